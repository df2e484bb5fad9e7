#ifndef QAL_PLAN_JOINT_REFUSAL_H_
#define QAL_PLAN_JOINT_REFUSAL_H_

#include <optional>

#include "joint_move.h"

namespace qal {

constexpr int kJoints = 6;

// What a joint move is refused for before it is planned.

/// Whether every number of both states is finite.
bool AllFinite(const MotionState& from, const MotionState& to);
/// The first that isn't.
Error NotFinite(const MotionState& from, const MotionState& to);

/// A scale that isn't above 0 and up to 1, or a duration that isn't 0 or above.
std::optional<Error> RefusedSetting(const JointLimits& limits);

/// A rate of a joint at an end that is beyond its limit, or a velocity that gets there however it
/// is braked.
std::optional<Error> RefusedRate(int joint, const AxisState& from, const AxisState& to,
                                 const AxisLimits& limits);

}  // namespace qal

#endif  // QAL_PLAN_JOINT_REFUSAL_H_
