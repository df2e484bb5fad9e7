#ifndef QAL_PLAN_FASTEST_LAW_H_
#define QAL_PLAN_FASTEST_LAW_H_

#include "path_speed.h"
#include "time_law.h"

// Internal: how a path is driven along.
namespace qal {

/// How much of each limit a motion needs at its most, as a multiple of it.
struct Load {
  double velocity = 0;
  double acceleration = 0;
  double jerk = 0;

  /// How much slower the motion has to be to keep the limits; 1 when it does.
  double Slowdown() const;
};

/// The most that a motion needs, at its pieces' ends and at three moments within each.
Load LoadOf(const JointPath& path, const PathLimits& limits, const TimeLaw& law);

/// The fastest motion from rest to rest along a path that keeps all limits.
/// @param step_s about how far apart in time the states are that it is made of
TimeLaw FastestLaw(const JointPath& path, const PathLimits& limits, double step_s);

}  // namespace qal

#endif  // QAL_PLAN_FASTEST_LAW_H_
