#ifndef QAL_PLAN_AXIS_TRANSFER_H_
#define QAL_PLAN_AXIS_TRANSFER_H_

#include "axis_motion.h"
#include "axis_reach.h"

namespace qal {

/// The velocity that a state leads to even if its acceleration is taken away at once.
double UnavoidableVelocity(const AxisState& state, double jerk);

/// One axis from any state to any other, in any time in which that can be done.
///
/// In a given time the motions that keep the limits are a convex set, since all of its bounds are
/// linear. So every displacement between the farthest and the nearest (the farthest the other way)
/// is that of a blend of those two motions, which keeps the limits as they do.
class AxisTransfer {
 public:
  // cppcheck-suppress uninitMemberVar
  AxisTransfer() = default;  // not to be used, like Reach's
  /// Each state has to be one that the limits allow (joint_move.cpp checks them).
  AxisTransfer(const AxisState& from, const AxisState& to, const AxisLimits& limits);

  /// The shortest time from `duration_s` on in which it can be done. Times that are long enough
  /// can be followed by some that are not, but not by infinitely many stretches of them.
  double NextDuration(double duration_s) const;

  /// Appends the pieces of a motion that takes `duration_s`, one of these.
  void AddPieces(double duration_s, AxisMotion& motion) const;

 private:
  AxisState from_;
  double acceleration_;  // the task's units of acceleration and time
  double time_s_;
  AxisTask task_;
  Reach farthest_, nearest_;
};

}  // namespace qal

#endif  // QAL_PLAN_AXIS_TRANSFER_H_
