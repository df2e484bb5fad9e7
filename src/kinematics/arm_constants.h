#ifndef QAL_KINEMATICS_ARM_CONSTANTS_H_
#define QAL_KINEMATICS_ARM_CONSTANTS_H_

namespace qal {

constexpr int kJointCount = 6;

// A joint may stand within 170 degrees of zero [rad]; the digits are fixed by the arm.
constexpr double kJointRangeRad = 2.967059678;

// Fallbacks look for a solution this far from the reference joints, towards zero [rad].
constexpr double kNudgeRad = 1e-5;

// Five times 0.00872664, about 2.5 degrees [rad]: how far a joint may be from the configuration
// that a point is held at.
constexpr double kHoldStepRad = 0.043633200000000004;

// How far a joint may move between two points of a ramped line [rad].
constexpr double kRampedLineStepRad = 0.518;

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

}  // namespace qal

#endif  // QAL_KINEMATICS_ARM_CONSTANTS_H_
