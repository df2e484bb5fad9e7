#ifndef QAL_PLAN_FASTEST_LAW_H_
#define QAL_PLAN_FASTEST_LAW_H_

#include <optional>

#include "limited_path.h"
#include "region.h"
#include "time_law.h"

// Internal: how a path is driven along.
namespace qal {

/// The fastest motion from rest to rest along a path that keeps all limits.
/// @param cycle_s of the arm: the states that it is made of are 2 cycles apart or more
/// @throw Interrupted when the arm's watch says so; as the next one
TimeLaw FastestLaw(const LimitedPath& path, double cycle_s);

/// The fastest motion along a path to rest that begins in motion.
/// @param known a motion that keeps the limits, and comes to rest before the path's end; where the
///              path begins it is the one that is asked for
/// @return nothing where none is found that keeps the limits to 2e-4 of them
std::optional<TimeLaw> FastestLawFrom(const LimitedPath& path, const TimeLaw& known,
                                      double cycle_s);

/// A motion to rest made slower so that it takes this long. It begins as it did.
TimeLaw SlowedTo(const TimeLaw& law, double duration_s);

/// How much slower a law would have to be to keep the limits; 1 when it does.
double SlowdownOf(const LimitedPath& path, const TimeLaw& law);

}  // namespace qal

#endif  // QAL_PLAN_FASTEST_LAW_H_
