#ifndef QAL_PLAN_JOINT_LIMITS_H_
#define QAL_PLAN_JOINT_LIMITS_H_

#include <algorithm>
#include <limits>
#include <optional>

#include "axis_motion.h"
#include "motion.h"

// Internal: what a motion may use of a joint.
namespace qal {

/// A joint's limits, scaled.
inline AxisLimits ScaledLimits(const JointModel& model, const LimitScale& scale) {
  return {model.velocity_rad_s.value * scale.velocity,
          model.acceleration_rad_s2.value * scale.acceleration,
          model.jerk_rad_s3.value * scale.jerk};
}

/// A scale that isn't above 0 and up to 1.
inline std::optional<Error> RefusedScale(const LimitScale& scale) {
  const std::pair<const char*, double> scales[] = {{"velocity_scale", scale.velocity},
                                                   {"acceleration_scale", scale.acceleration},
                                                   {"jerk_scale", scale.jerk}};
  for (const auto& [name, value] : scales) {
    if (!(value > 0 && value <= 1)) return Error{Reason::kSetting, -1, value, 1, name};
  }
  return std::nullopt;
}

/// How far a position is outside of a joint's range [rad]; below 0 inside.
inline double Outside(const JointModel& model, double position_rad) {
  return std::max(model.lower_rad.value - position_rad, position_rad - model.upper_rad.value);
}

/// How far joints stay from the nearest of their limits [rad]; below 0 out of them, infinity where
/// there are none.
inline double SmallestMargin(const Arm& arm, const Joints& joints) {
  double margin_rad = std::numeric_limits<double>::infinity();
  for (size_t j = 0; j < joints.size(); ++j) {
    margin_rad = std::min(margin_rad, -Outside(arm.joints()[j], joints[j]));
  }
  return margin_rad;
}

/// The failure of a joint that would be at a position outside of its range.
inline Error OutOfRange(int joint, const JointModel& model, double position_rad) {
  const double lower = model.lower_rad.value;
  return {Reason::kJointRange, joint, position_rad,
          position_rad < lower ? lower : model.upper_rad.value};
}

/// Rounding puts a joint that stands at its limit beyond it.
constexpr double kRangeRoundingRad = 1e-9;

/// The first joint that is out of its range.
inline std::optional<Error> RefusedJoints(const Arm& arm, const Joints& joints) {
  for (size_t j = 0; j < joints.size(); ++j) {
    const JointModel& model = arm.joints()[j];
    if (Outside(model, joints[j]) <= kRangeRoundingRad) continue;
    return OutOfRange(static_cast<int>(j), model, joints[j]);
  }
  return std::nullopt;
}

}  // namespace qal

#endif  // QAL_PLAN_JOINT_LIMITS_H_
