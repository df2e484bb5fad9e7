#ifndef QAL_KINEMATICS_SOLVE_ARM_NUMBERS_H_
#define QAL_KINEMATICS_SOLVE_ARM_NUMBERS_H_

#include "judgement.h"

namespace qal {

// Motor shaft angle per rpm in 0.1 ms [rad]: 2*pi/60 * 1e-4, held at six digits. The digits are
// part of the results: the exact quotient moves every limit in the 7th digit.
constexpr double kShaftRadPerRpmTick = 1.04719e-05;
constexpr double kTickS = 1e-4;

/// What the classic operations know of an arm besides its solver. An array has an entry a joint.
struct ArmNumbers {
  JointRange range[kJointCount];
  double gear_ratio[kJointCount];      ///< motor turns per turn of the joint
  double full_speed_rpm[kJointCount];  ///< motor speed at 100 percent
  double dead_band_rad[kJointCount];   ///< a joint to move no further stands still to the end point
  double joint_rad_per_rpm_cycle[kJointCount];  ///< joint angle per rpm of its motor in one cycle
  double shaft_rad_per_rpm_cycle;               ///< motor angle per rpm in one cycle
  double ticks_per_cycle;                       ///< of 0.1 ms
  double cycle_s;
  double cycle_ms;
};

// Waypoints have to stand within 170 degrees of zero [rad]; the digits are fixed by the reference
// arm, and hold for the classic operations whatever the arm.
constexpr double kJointRangeRad = 2.967059678;
constexpr JointRange kClassicRange = {-kJointRangeRad, kJointRangeRad};

/// The reference arm's. Joints 1 to 3 are its big axes, joints 4 to 6 the small ones; the groups
/// differ in gear ratio and dead band (a 4096th turn of the motor). Products and quotients are held
/// as the arm stores them: computed, they come out one last digit off.
constexpr ArmNumbers kReferenceNumbers = {
    {kClassicRange, kClassicRange, kClassicRange, kClassicRange, kClassicRange, kClassicRange},
    {363, 363, 363, 303, 303, 303},
    {3000, 3000, 3000, 3000, 3000, 3000},
    {4.22584e-06, 4.22584e-06, 4.22584e-06, 5.06242e-06, 5.06242e-06, 5.06242e-06},
    {1.4424104683195595e-06, 1.4424104683195595e-06, 1.4424104683195595e-06, 1.7280363036303633e-06,
     1.7280363036303633e-06, 1.7280363036303633e-06},
    /*shaft_rad_per_rpm_cycle*/ 0.000523595,
    /*ticks_per_cycle*/ 50.0,
    /*cycle_s*/ 0.005,
    /*cycle_ms*/ 5.0};

}  // namespace qal

#endif  // QAL_KINEMATICS_SOLVE_ARM_NUMBERS_H_
