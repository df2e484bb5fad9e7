#ifndef QAL_PLAN_CYCLES_H_
#define QAL_PLAN_CYCLES_H_

#include <cmath>

// Internal: times in control cycles.
namespace qal {

/// The fewest whole cycles that take so long.
inline double WholeCycles(double duration_s, double cycle_s) {
  // A duration this much of a cycle beyond a whole number of cycles is that number.
  constexpr double kRounding = 1e-9;
  return std::ceil(duration_s / cycle_s - kRounding);
}

/// The time of a sample. With a cycle of whole milliseconds it is the nearest double, as 0.165 is:
/// 0.005 isn't exact, and its error would show.
inline double TimeOf(double cycles, double cycle_s) { return cycles * (cycle_s * 1000) / 1000; }

}  // namespace qal

#endif  // QAL_PLAN_CYCLES_H_
