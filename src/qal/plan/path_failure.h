#ifndef QAL_PLAN_PATH_FAILURE_H_
#define QAL_PLAN_PATH_FAILURE_H_

#include <optional>

#include "motion.h"
#include "path_follower.h"

// Internal: why there is no motion along a path.
namespace qal {

/// Where joints first leave their range, and how far they would go. `along` is the place.
/// @param first the piece of the path to begin with
std::optional<PlanFailure> LeavesRange(const Arm& arm, const JointPath& path, size_t first = 0);

/// How far the joints stay from their limits on all of a path [rad]; below 0 where they leave them.
double SmallestMargin(const Arm& arm, const JointPath& path);

/// Why a path of the tool could be followed no further than `last`: the pose is out of reach, or
/// the arm is singular. `along` is the place.
/// @param begin where the tool's path begins
PlanFailure NoWayOn(const Arm& arm, const ToolPath& path, double begin, const PathPoint& last);

}  // namespace qal

#endif  // QAL_PLAN_PATH_FAILURE_H_
