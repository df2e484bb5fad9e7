#ifndef QAL_PLAN_JOINT_MOVE_H_
#define QAL_PLAN_JOINT_MOVE_H_

/// @file
/// Joint moves, the quickest within each joint's velocity, acceleration and jerk.

#include <array>
#include <vector>

#include "axis_motion.h"
#include "binding.h"
#include "motion.h"

namespace qal {

/// What a joint move may do at most, besides what its arm says.
struct JointLimits {
  LimitScale scale;       ///< how much of the arm's limits to use
  double duration_s = 0;  ///< the move takes at least this long
};

/// The longest duration of a move. A longer one's time has no digits left for its phases.
constexpr double kLongestMoveS = 1e12;

/// A move of six joints: cubics that anybody can read. A value without memory from the heap.
class JointMotion {
 public:
  /// For the planner: a move without its pieces.
  JointMotion(const MotionState& from, const MotionState& to, const LimitScale& scale)
      : from_(from), to_(to), scale_(scale) {}

  /// How long it takes.
  double duration_s() const { return duration_s_; }
  /// The joints' pieces [rad], joint 1 first.
  const std::array<AxisMotion, 6>& joints() const { return joints_; }
  /// What the joints were planned within: the arm's limits, scaled.
  const LimitScale& scale() const { return scale_; }
  /// Each joint's, scaled: [rad/s], [rad/s^2] and [rad/s^3], joint 1 first.
  const std::array<AxisLimits, 6>& limits() const { return limits_; }
  /// Where it begins.
  const MotionState& from() const { return from_; }
  /// Where it ends.
  const MotionState& to() const { return to_; }

  /// The state at `t_s`: before the motion its start, after it its end, exactly.
  QAL_API MotionState At(double t_s) const;

  /// The limits that joints are at, those of the largest share of the duration first.
  QAL_API std::vector<Binding> bindings() const;

 private:
  friend class JointPlanner;

  double duration_s_ = 0;
  MotionState from_, to_;
  LimitScale scale_;
  std::array<AxisLimits, 6> limits_;
  std::array<AxisMotion, 6> joints_;
};

/// The quickest move from one state to another that keeps each joint's limits of velocity,
/// acceleration and jerk: the slowest joint takes the shortest time that it can, the others as
/// long. Closed forms and roots of polynomials; no memory from the heap.
///
/// From rest to rest, joints turn straight to their ends. A joint that is moving at an end may have
/// to pass it and come back.
/// @param arm    whose limits are kept
/// @param from   may be moving, within the limits
/// @param to     likewise
/// @param limits how much of the arm's limits to use, and how long to take at least
/// @return the move; kNotFinite; kSetting: a scale that isn't above 0 and up to 1, a duration below
/// 0 or
///         beyond `kLongestMoveS`;
///         kEndRate: an end's rate is beyond its limit, or leads there however it is braked;
///         kJointRange: an end is outside of its joint's range, or the move has to leave it, at
///         `along` of its duration
QAL_API Result<JointMotion, PlanFailure> PlanJoint(const Arm& arm, const MotionState& from,
                                                   const MotionState& to,
                                                   const JointLimits& limits = {});

}  // namespace qal

#endif  // QAL_PLAN_JOINT_MOVE_H_
