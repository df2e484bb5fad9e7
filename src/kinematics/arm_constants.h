#ifndef QAL_KINEMATICS_ARM_CONSTANTS_H_
#define QAL_KINEMATICS_ARM_CONSTANTS_H_

namespace qal {

constexpr int kJointCount = 6;

// Joints 1 to 3 are the big axes, joints 4 to 6 the small ones; the groups differ in gear ratio.
constexpr int kBigAxisCount = 3;
constexpr int kBigGearRatio = 363;
constexpr int kSmallGearRatio = 303;

/// Motor turns per turn of a joint, counted from 0.
constexpr int GearRatio(int joint) {
  return joint < kBigAxisCount ? kBigGearRatio : kSmallGearRatio;
}

// Waypoints of a trajectory are this far apart [s].
constexpr double kCycleS = 0.005;
constexpr int kCycleMs = 5;

// Motor shaft angle per rpm in 0.1 ms [rad]: 2*pi/60 * 1e-4, held at six digits, and the 0.1 ms
// ticks of one cycle. The digits are part of the results: the exact quotient moves every limit in
// the 7th digit.
constexpr double kShaftRadPerRpmTick = 1.04719e-05;
constexpr double kTicksPerCycle = 50.0;
// The product of the two as the arm stores it; computed, it comes out one last digit larger.
constexpr double kShaftRadPerRpmCycle = 0.000523595;
// Joint angle per rpm in one cycle [rad], by gear ratio, as the arm stores it.
constexpr double kBigJointRadPerRpmCycle = 1.4424104683195595e-06;
constexpr double kSmallJointRadPerRpmCycle = 1.7280363036303633e-06;

// Motor speed at 100 percent [rpm].
constexpr int kFullSpeedRpm = 3000;

// A joint that is to move by no more than this stands still until the end point [rad].
constexpr double kBigDeadBandRad = 4.22584e-06;
constexpr double kSmallDeadBandRad = 5.06242e-06;

/// Dead band of a joint, counted from 0 [rad].
constexpr double DeadBandRad(int joint) {
  return joint < kBigAxisCount ? kBigDeadBandRad : kSmallDeadBandRad;
}

// A joint may stand within 170 degrees of zero [rad]; the digits are fixed by the arm.
constexpr double kJointRangeRad = 2.967059678;

// Fallbacks look for a solution this far from the reference joints, towards zero [rad].
constexpr double kNudgeRad = 1e-5;

// Five times 0.00872664, about 2.5 degrees [rad]: how far a joint may be from the configuration
// that a point is held at.
constexpr double kHoldStepRad = 0.043633200000000004;

// How far a joint may move between two points of a ramped or an S-curve line [rad].
constexpr double kLineStepRad = 0.518;

// A jog may move each joint this many radians per unit of its step [rad/m or rad/rad].
constexpr double kJogStepFactor = 1000.0;

// Two poses closer than this count as one for the nearest-solution search: coordinates [m] and
// quaternion components, both judged in single precision.
constexpr float kSamePositionM = 1e-5f;
constexpr float kSameOrientation = 0.0001f;

// A waypoint's position and the position of its joints agree within this on each axis [m].
constexpr double kPositionAgreementM = 0.002;

// End points of a line must lie within this on each axis [m] and in each quaternion component.
constexpr float kLinePairPositionM = 1.0f;
constexpr float kLinePairOrientation = 0.0001f;

// Step of a fixed-step line per unit of precision, and of five units of speed [m].
constexpr double kFixedLineStepM = 0.0002;

// A ramped line's step grows by this from cycle to cycle [m].
constexpr double kRampUnitM = 2e-5;

// A fixed-step joint move advances its leading joint by this per ten units of speed: 0.1 degree
// [rad].
constexpr double kJointMoveStepRad = 0.001745329;

// A ramped joint move's leading step grows by this from cycle to cycle: 0.01 degree [rad].
constexpr double kJointRampUnitRad = 0.0001745329;

// The step table's cycle counts are squared in 32 bits: no synchronised move may be longer.
constexpr int kLongestRunCycles = 46340;

}  // namespace qal

#endif  // QAL_KINEMATICS_ARM_CONSTANTS_H_
