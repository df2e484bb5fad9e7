#ifndef QAL_PLAN_ROUNDS_H_
#define QAL_PLAN_ROUNDS_H_

#include <optional>
#include <vector>

#include "draft.h"
#include "limited_path.h"
#include "load.h"
#include "path_speed.h"
#include "time_law.h"

// Internal: the rounds in which a motion is found.
namespace qal {

/// What a further round has to gain.
constexpr double kRoundsEnough = 8e-3;

/// A motion, and how much slower it has to be.
struct Driven {
  TimeLaw law;
  double slowdown;
};

/// The fastest motion along a path from a state to rest, in rounds: each has a better draft, and
/// margins where the limits were exceeded between the places.
/// @param start as of `FastestStates`
/// @return nothing where no round finds a motion
std::optional<Driven> Drive(const LimitedPath& path, const PathState& start, Draft draft);

}  // namespace qal

#endif  // QAL_PLAN_ROUNDS_H_
