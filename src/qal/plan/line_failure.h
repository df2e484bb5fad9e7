#ifndef QAL_PLAN_LINE_FAILURE_H_
#define QAL_PLAN_LINE_FAILURE_H_

#include <optional>

#include "line_path.h"
#include "motion.h"
#include "path_follower.h"

// Internal: why a line can't be planned.
namespace qal {

/// Where joints first leave their range, and how far they would go.
std::optional<PlanFailure> LeavesRange(const Arm& arm, const LinePath& line, const JointPath& path);

/// Why a line could be followed no further than `last`: the pose is out of reach, or the arm is
/// singular.
PlanFailure NoWayOn(const Arm& arm, const LinePath& line, const PathPoint& last);

}  // namespace qal

#endif  // QAL_PLAN_LINE_FAILURE_H_
