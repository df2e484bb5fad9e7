#ifndef QAL_PLAN_FASTEST_LAW_H_
#define QAL_PLAN_FASTEST_LAW_H_

#include "joint_path.h"
#include "path_limits.h"
#include "time_law.h"

// Internal: how a path is driven along.
namespace qal {

/// The fastest motion from rest to rest along a path that keeps all limits.
/// @param cycle_s of the arm: the states that it is made of are 4 cycles apart or more
TimeLaw FastestLaw(const JointPath& path, const PathLimits& limits, double cycle_s);

}  // namespace qal

#endif  // QAL_PLAN_FASTEST_LAW_H_
