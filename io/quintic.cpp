#include "quintic.h"

#include <algorithm>
#include <cmath>

namespace qal::io {

namespace {

// The coefficients of the acceleration, which is the straight line between the ends', and s (1 - s)
// (p + q s) on it. That has the area p / 6 + q / 12 and the moment p / 12 + q / 20: what the
// velocities and the positions leave of area and moment under the straight line.
std::array<double, 4> AccelerationOf(const Quintic::End& from, const Quintic::End& to,
                                     double duration_s) {
  const double a0 = from.acceleration;
  const double a1 = to.acceleration;
  const double way = (to.position - from.position) / duration_s;
  const double area = (to.velocity - from.velocity) / duration_s - (a0 + a1) / 2;
  const double moment = (to.velocity - way) / duration_s - (a0 + 2 * a1) / 6;
  const double p = 36 * area - 60 * moment;
  const double q = 120 * moment - 60 * area;
  return {a0, a1 - a0 + p, q - p, -q};
}

}  // namespace

Quintic::Quintic(const End& from, const End& to, double duration_s)
    : duration_s_(duration_s),
      start_velocity_(from.velocity),
      acceleration_(AccelerationOf(from, to, duration_s)) {}

double Quintic::Velocity(double at) const {
  const auto& [c0, c1, c2, c3] = acceleration_;
  return start_velocity_ + duration_s_ * at * (c0 + at * (c1 / 2 + at * (c2 / 3 + at * (c3 / 4))));
}

double Quintic::Acceleration(double at) const {
  const auto& [c0, c1, c2, c3] = acceleration_;
  return c0 + at * (c1 + at * (c2 + at * c3));
}

// The ends, and between them where the jerk is zero, in order: the acceleration is monotone from
// each to the next.
std::array<double, 4> Quintic::Extremes() const {
  const auto& [c0, c1, c2, c3] = acceleration_;
  std::array<double, 4> extremes = {0, 0, 1, 1};
  const double square = c2 * c2 - 3 * c1 * c3;
  if (!(square >= 0)) return extremes;
  // Of the two roots the one without a cancellation, and the other by their product. A division by
  // zero gives a root that isn't between the ends.
  const double larger = -(c2 + std::copysign(std::sqrt(square), c2));
  const double roots[] = {larger / (3 * c3), c1 / larger};
  for (size_t i = 0; i < 2; ++i) {
    if (roots[i] > 0 && roots[i] < 1) extremes[i + 1] = roots[i];
  }
  std::sort(extremes.begin(), extremes.end());
  return extremes;
}

// NaN where a coefficient isn't finite: std::max keeps it.
double Quintic::PeakToBegin() const {
  const auto& [c0, c1, c2, c3] = acceleration_;
  return 0 * (c0 + c1 + c2 + c3);
}

double Quintic::PeakAcceleration() const {
  double peak = PeakToBegin();
  for (const double at : Extremes()) peak = std::max(peak, std::fabs(Acceleration(at)));
  return peak;
}

// Between two places where it has opposite signs, and is monotone.
double Quintic::ZeroOfAcceleration(double from, double to) const {
  const bool rises = Acceleration(to) > 0;
  for (int i = 0; i < 40; ++i) {
    const double middle = (from + to) / 2;
    (Acceleration(middle) > 0) == rises ? to = middle : from = middle;
  }
  return from;
}

double Quintic::PeakVelocity() const {
  double peak = PeakToBegin();
  for (const double end : {0, 1}) peak = std::max(peak, std::fabs(Velocity(end)));
  const std::array<double, 4> extremes = Extremes();
  for (size_t i = 1; i < extremes.size(); ++i) {
    if (!(Acceleration(extremes[i - 1]) * Acceleration(extremes[i]) < 0)) continue;
    const double zero = ZeroOfAcceleration(extremes[i - 1], extremes[i]);
    peak = std::max(peak, std::fabs(Velocity(zero)));
  }
  return peak;
}

}  // namespace qal::io
