#include "mend.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "law_states.h"
#include "load.h"

namespace qal {

namespace {

// A dip in a motion's speed: by `depth` of itself at a time, and smoothly less around that.
class Dip {
 public:
  Dip(double depth, double time_s, double before_s, double after_s)
      : depth_(depth), time_s_(time_s), before_s_(before_s), after_s_(after_s) {}

  SpeedFactor At(double time_s) const {
    const double width_s = time_s < time_s_ ? before_s_ : after_s_;
    const double x = (time_s - time_s_) / width_s;
    const double left = 1 - x * x;
    if (!(left > 0)) return {};
    return {1 - depth_ * left * left * left, depth_ * 6 * x * left * left / width_s};
  }

 private:
  double depth_;
  double time_s_;
  double before_s_;
  double after_s_;
};

// With dips one upon another their factors are multiplied.
TimeLaw WithDips(const TimeLaw& law, const std::vector<Dip>& dips) {
  return Scaled(law, [&dips](double time_s) {
    SpeedFactor all;
    for (const Dip& dip : dips) {
      const auto [factor, rate] = dip.At(time_s);
      all = {all.factor * factor, all.rate * factor + all.factor * rate};
    }
    return all;
  });
}

}  // namespace

double DipWidthOf(const TimeLaw& law) {
  double speed = 0;
  double square = 0;  // the mean of the jerk's
  for (size_t k = 0; k < law.size(); ++k) {
    const PathMoment moment = law.At(law.begin_s(k) + law.length_s(k) / 2, k);
    speed = std::max(speed, moment.speed);
    square += law.length_s(k) / law.duration_s() * moment.jerk * moment.jerk;
  }
  return 2 * std::sqrt(speed / std::sqrt(square));
}

double Mend(const LimitedPath& path, TimeLaw& law) {
  constexpr int kMostTurns = 12;
  double width_s = DipWidthOf(law);
  double before = INFINITY;
  for (int turn = 0;; ++turn) {
    LoadMeter meter(path, law);
    std::vector<double> needed(law.size());
    for (double& here : needed) here = meter.Next().Slowdown();
    const double slowdown = *std::max_element(needed.begin(), needed.end());
    if (!(slowdown > 1 + kMended) || turn == kMostTurns || std::isinf(slowdown)) return slowdown;
    // The dips themselves are too steep.
    if (slowdown - 1 > 0.7 * (before - 1)) width_s *= 1.5;
    before = slowdown;
    std::vector<Dip> dips;
    for (;;) {
      const auto worst = std::max_element(needed.begin(), needed.end());
      if (*worst <= 1 + kMended / 2) break;
      const auto piece = static_cast<size_t>(worst - needed.begin());
      const double time_s = law.begin_s(piece) + law.length_s(piece) / 2;
      dips.emplace_back(1 - 1 / *worst, time_s, std::min(width_s, time_s), width_s);
      for (size_t k = 0; k < needed.size(); ++k) {
        const double there_s = law.begin_s(k) + law.length_s(k) / 2;
        if (std::fabs(there_s - time_s) < width_s) needed[k] = 1;
      }
    }
    law = WithDips(law, dips);
  }
}

}  // namespace qal
