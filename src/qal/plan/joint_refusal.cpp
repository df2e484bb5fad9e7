#include "joint_refusal.h"

#include <cmath>

#include "axis_transfer.h"
#include "joint_limits.h"

namespace qal {

namespace {

// A state that a motion within the limits was sampled at may be some roundings beyond them.
constexpr double kAtLimit = 1 + 1e-10;

}  // namespace

// 0 times such a number is 0. By joint, so that sums don't wait for each other, and without
// branches.
bool AllFinite(const MotionState& from, const MotionState& to) {
  bool finite = true;
  for (size_t j = 0; j < kJoints; ++j) {
    const double zero = 0 * from.joints[j] + 0 * from.velocities[j] + 0 * from.accelerations[j] +
                        0 * to.joints[j] + 0 * to.velocities[j] + 0 * to.accelerations[j];
    finite &= zero == 0;
  }
  return finite;
}

Error NotFinite(const MotionState& from, const MotionState& to) {
  for (const MotionState* state : {&from, &to}) {
    for (const Joints* numbers : {&state->joints, &state->velocities, &state->accelerations}) {
      for (int j = 0; j < kJoints; ++j) {
        const double number = (*numbers)[static_cast<size_t>(j)];
        if (!std::isfinite(number)) return {Reason::kNotFinite, j, number};
      }
    }
  }
  return {Reason::kNotFinite};
}

std::optional<Error> RefusedSetting(const JointLimits& limits) {
  if (auto refused = RefusedScale(limits.scale)) return refused;
  if (limits.duration_s >= 0 && std::isfinite(limits.duration_s)) return std::nullopt;
  return Error{Reason::kSetting, -1, limits.duration_s, 0, "duration_s"};
}

std::optional<Error> RefusedRate(int joint, const AxisState& from, const AxisState& to,
                                 const AxisLimits& limits) {
  const struct {
    const char* name;
    double value, bound;
  } rates[] = {
      {"start_velocity_rad_s", from.velocity, limits.velocity},
      {"start_acceleration_rad_s2", from.acceleration, limits.acceleration},
      {"end_velocity_rad_s", to.velocity, limits.velocity},
      {"end_acceleration_rad_s2", to.acceleration, limits.acceleration},
      {"unavoidable_start_velocity_rad_s", UnavoidableVelocity(from, limits.jerk), limits.velocity},
      {"unavoidable_end_velocity_rad_s",
       UnavoidableVelocity({0, to.velocity, -to.acceleration}, limits.jerk), limits.velocity}};
  for (const auto& [name, value, bound] : rates) {
    if (std::fabs(value) > bound * kAtLimit) {
      return Error{Reason::kEndRate, joint, value, bound, name};
    }
  }
  return std::nullopt;
}

}  // namespace qal
