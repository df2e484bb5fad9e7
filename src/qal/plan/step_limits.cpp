#include "step_limits.h"

#include <algorithm>
#include <cmath>

namespace qal {

namespace {

// Motions that nearly stop on the way are none of the fastest, and the tangents say little of them.
double LeastSquare(double reference) {
  constexpr double kSlowest = 0.2;
  return kSlowest * kSlowest * reference * reference;
}

// Takes away where a rate's acceleration is beyond its limit.
void Cut(const LimitedRate& rate, double limit, Region& region) {
  region.Cut({rate.second, rate.first, limit});
  region.Cut({-rate.second, -rate.first, limit});
}

}  // namespace

StepLimits ShapeOf(double h, double v0, double half, double v1) {
  StepLimits step;
  step.h = h;
  const double sum = v0 + 4 * half + v1;
  step.after = (2 * half + v1) / sum;
  step.place = (5 * v0 + 8 * half - v1) / (4 * sum);
  step.halfway = (3 * v0 + 10 * half - v1) / (16 * sum);
  const double speed = sum / 6;
  step.at_zero = 1.5 / speed;
  step.slope = 0.5 / (speed * speed * speed);
  step.least_square = LeastSquare(speed);
  return step;
}

void SetJerkRows(const LimitedRates& rates, const Margin& margin, StepLimits& step) {
  step.rates = 0;
  for (const LimitedRate& rate : rates) {
    const double limit = margin.jerk * rate.jerk;
    step.first[step.rates] = rate.first / (limit * step.h);
    step.second[step.rates] = 3 * rate.second / limit;
    step.third[step.rates] = rate.third / limit;
    ++step.rates;
  }
}

Region AllowedAt(const LimitedRates& rates, const Margin& margin, double most_square,
                 double reference) {
  // Nor do they say much of much faster ones.
  constexpr double kFastest = 1.5;
  const double fastest = std::min(kFastest * kFastest * reference * reference, most_square);
  const double least = std::min(LeastSquare(reference), fastest);
  // More than any motion: for places where nothing moves with s.
  double most = 1e9;
  double per = 1;  // in place of a division by each
  for (const LimitedRate& rate : rates) {
    // |second * b + first * a| <= limit, b within what is allowed.
    const double here = margin.acceleration * rate.acceleration + std::fabs(rate.second) * fastest;
    const double first = std::fabs(rate.first);
    if (here * per < most * first) {
      most = here;
      per = first;
    }
  }
  most /= per;
  Region region({least, -most}, {fastest, most});
  for (const LimitedRate& rate : rates) {
    const double limit = margin.acceleration * rate.acceleration;
    if (std::fabs(rate.second) * fastest + std::fabs(rate.first) * most <= limit) continue;
    Cut(rate, limit, region);
  }
  return region;
}

void CutAccelerations(const LimitedRates& rates, const Margin& margin, Region& region) {
  for (const LimitedRate& rate : rates) {
    Cut(rate, margin.acceleration * rate.acceleration, region);
  }
}

// From rest at a constant jerk j: b = 3/2 h a, with a^3 = 6 h j^2.
PathState FromRest(const StepLimits& step) {
  double largest = 0;
  for (size_t i = 0; i < step.rates; ++i) largest = std::max(largest, std::fabs(step.first[i]));
  const double jerk = 1 / (largest * step.h);
  const double a = std::cbrt(6 * step.h * jerk * jerk);
  return {1.5 * step.h * a, a};
}

}  // namespace qal
