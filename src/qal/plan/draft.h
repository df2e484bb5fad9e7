#ifndef QAL_PLAN_DRAFT_H_
#define QAL_PLAN_DRAFT_H_

#include <vector>

#include "joint_path.h"
#include "path_limits.h"

// Internal: a first idea of a motion along a path.
namespace qal {

/// A motion from rest to rest along a path, by its speeds at places.
struct Draft {
  std::vector<double> places;  ///< from s = 0 to 1
  std::vector<double> speed;   ///< there; at the ends 0
  std::vector<double> half;    ///< at half the time between two places
};

/// Steps of a motion at the most, so that one of days takes no more memory than one of minutes.
constexpr double kMostSteps = 50000;

/// A motion about as fast as the limits let it, by places `step_s` apart, and closer where the
/// path's pieces are shorter: there the joints bend most.
Draft DraftOf(const JointPath& path, const PathLimits& limits, double step_s);

}  // namespace qal

#endif  // QAL_PLAN_DRAFT_H_
