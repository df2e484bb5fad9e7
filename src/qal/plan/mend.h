#ifndef QAL_PLAN_MEND_H_
#define QAL_PLAN_MEND_H_

#include "limited_path.h"
#include "time_law.h"

// Internal: motions that need too much here and there.
namespace qal {

/// By how much too fast a motion may be left that can't be slowed down as a whole.
constexpr double kMended = 2e-4;

/// How long a dip in a motion's speed takes at least for what it adds to accelerations and jerks to
/// be less than what it takes away: a dip by d adds some 6 d speed / width^2 to the jerk, and takes
/// away 3 d of it.
double DipWidthOf(const TimeLaw& law);

/// Slows a motion to rest down where it needs too much, and only there, by dips in its speed.
/// @return what is left to slow it down by as a whole; at most 1 + `kMended` unless it can't be
///         mended
double Mend(const LimitedPath& path, TimeLaw& law);

}  // namespace qal

#endif  // QAL_PLAN_MEND_H_
