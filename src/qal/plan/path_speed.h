#ifndef QAL_PLAN_PATH_SPEED_H_
#define QAL_PLAN_PATH_SPEED_H_

#include <vector>

#include "draft.h"
#include "region.h"
#include "step_limits.h"

// Internal: the fastest states of a motion along a path.
namespace qal {

/// At each place the state of the fastest motion from a state to rest. From place to place the jerk
/// is constant.
/// @param start  the state at the path's begin: rest, or one in motion, to begin about as that
/// @param draft  a motion that is about as fast: the closer, the better the answer, which keeps the
///               limits whatever it is
/// @param margin of each step from place to place
/// @param dead_end out: where there is none, the place at which the draft is too fast, or its start
/// @return empty where there is none
std::vector<PathState> FastestStates(const LimitedPath& path, const PathState& start,
                                     const Draft& draft, const std::vector<Margin>& margin,
                                     size_t& dead_end);

}  // namespace qal

#endif  // QAL_PLAN_PATH_SPEED_H_
