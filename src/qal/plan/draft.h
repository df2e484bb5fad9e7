#ifndef QAL_PLAN_DRAFT_H_
#define QAL_PLAN_DRAFT_H_

#include <vector>

#include "limited_path.h"
#include "region.h"

// Internal: a first idea of a motion along a path.
namespace qal {

/// A motion along a path to rest, by its speeds at places.
struct Draft {
  std::vector<double> places;  ///< from the path's begin to its end
  std::vector<double> speed;   ///< there; at the end 0
  std::vector<double> half;    ///< at half the time between two places
};

/// Steps of a motion at the most, so that one of days takes no more memory than one of minutes.
constexpr double kMostDraftSteps = 50000;

/// A motion about as fast as the limits let it, by places `step_s` apart, and closer where the
/// path's pieces are shorter: there the joints bend most. Where sections meet there is a place.
/// @param start_speed at the path's begin
Draft DraftOf(const LimitedPath& path, double start_speed, double step_s);

}  // namespace qal

#endif  // QAL_PLAN_DRAFT_H_
