#ifndef QAL_IO_TRAJECTORY_JSON_H_
#define QAL_IO_TRAJECTORY_JSON_H_

#include <string_view>

#include "json.h"
#include "trajectory.h"

namespace qal::io {

/// A trajectory as JSON, one array a quantity and one entry a sample:
///
///     {"time_s": [0, ...], "joints_rad": [[q1, ..., q6], ...],
///      "position_m": [[x, y, z], ...], "orientation_wxyz": [[w, x, y, z], ...],
///      "velocities_rad_s": [[v1, ..., v6], ...], "accelerations_rad_s2": [[a1, ..., a6], ...]}
///
/// Pose, velocities and accelerations are there when every sample has them.
Json ToJson(const FileTrajectory& trajectory);

/// Reads what `ToJson` gives; other keys are passed over. Times are not checked for their order.
/// @throw UsageError "line N, column M: REASON" as JsonEvents; "KEY[SAMPLE]: REASON" when a value
/// is
///        not as it has to be, "KEY: REASON" when one is missing
LocatedTrajectory ParseJsonTrajectory(std::string_view text);

}  // namespace qal::io

#endif  // QAL_IO_TRAJECTORY_JSON_H_
