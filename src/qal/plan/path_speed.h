#ifndef QAL_PLAN_PATH_SPEED_H_
#define QAL_PLAN_PATH_SPEED_H_

#include <vector>

#include "draft.h"
#include "region.h"

// Internal: the fastest states of a motion along a path.
namespace qal {

/// How much of the limits to use from one place to the next.
struct Margin {
  double acceleration = 1;
  double jerk = 1;
};

/// At each place the state of the fastest motion from rest to rest. From place to place the jerk is
/// constant.
/// @param draft  a motion that is about as fast: the closer, the better the answer, which keeps the
///               limits whatever it is
/// @param margin of each step from place to place
/// @return empty where there is none, for want of digits
std::vector<PathState> FastestStates(const JointPath& path, const PathLimits& limits,
                                     const Draft& draft, const std::vector<Margin>& margin);

}  // namespace qal

#endif  // QAL_PLAN_PATH_SPEED_H_
