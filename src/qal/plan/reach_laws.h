#ifndef QAL_PLAN_REACH_LAWS_H_
#define QAL_PLAN_REACH_LAWS_H_

#include <algorithm>
#include <cmath>
#include <limits>

namespace qal {

constexpr double kNever = std::numeric_limits<double>::infinity();

// How far an axis gets at most by the time that it takes (`Reach`), one law for shorter times, one
// for longer ones. Each has a variable in which its displacement is a polynomial (times that
// variable), and `top`: where it stops rising, to rise again later.

/// Neither limit of acceleration is met. With m from peak to trough, the time is 2 m.
struct NoHold {
  double sum, change;
  static double FromTime(double time) { return time / 2; }
  static double ToTime(double m) { return 2 * m; }
  double Ratio(double m) const { return m > 0 ? std::min(change / m, 2.0) : 0; }
  double Value(double m) const { return m * (sum + m * m / 4) - change * Ratio(m) / 4; }
  double Slope(double m) const { return sum + (3 * m * m + Ratio(m) * Ratio(m)) / 4; }
  double top() const {
    const double root = 4 * sum * sum - 3 * change * change;
    if (sum >= 0 || root <= 0) return kNever;
    return change / std::sqrt(std::sqrt(root) - 2 * sum);
  }
};

/// The limit of acceleration is held at the end that is to be faster, whose velocity is `faster`.
/// With x from there to the opposite peak, the time is x^2 + change.
struct OneHold {
  double faster, change;
  double FromTime(double time) const { return std::sqrt(std::max(0.0, time - change)); }
  double ToTime(double x) const { return x * x + change; }
  double Value(double x) const {
    return x * x * (x * (x / 2 - 1) + faster + 0.5) + change * (faster - (change + 1) / 2);
  }
  double Slope(double x) const { return x * (x * (2 * x - 3) + 2 * faster + 1); }
  double top() const {
    const double root = 1.0 / 16 - faster;
    return root > 0 ? 0.75 - std::sqrt(root) : kNever;
  }
};

/// Where a law that is below `target` at `low` reaches it, on a stretch up to `high` on which it
/// does so once: Newton's method, and halving where that doesn't halve its steps or leaves the
/// stretch.
template <class Law>
double Root(const Law& law, double low, double high, double target) {
  double x = high;
  double step = high - low;
  double step_before = step;
  for (int i = 0; i < 100; ++i) {
    const double over = law.Value(x) - target;
    (over < 0 ? low : high) = x;
    const double newton = x - over / law.Slope(x);
    const bool good =
        newton >= low && newton <= high && 2 * std::fabs(newton - x) <= std::fabs(step_before);
    const double next = good ? newton : low + (high - low) / 2;
    step_before = step;
    step = next - x;
    x = next;
    constexpr double kRoundings = 4e-16;
    if (!(std::fabs(step) > kRoundings * std::fabs(x))) break;
  }
  return x;
}

/// The first time in [begin, end] at which a law that is below `target` at `begin` reaches it;
/// never: none.
template <class Law>
double FirstReached(const Law& law, double begin, double end, double target) {
  if (!(begin < end)) return kNever;
  const double low = law.FromTime(begin);
  double high = law.FromTime(end);
  const double top = law.top();
  if (top > low && top < high && law.Value(top) >= target) high = top;
  if (law.Value(high) < target) return kNever;
  return std::max(begin, law.ToTime(Root(law, low, high, target)));
}

}  // namespace qal

#endif  // QAL_PLAN_REACH_LAWS_H_
