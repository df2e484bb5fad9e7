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

}  // namespace

PlaceLimits LimitsAt(const PathPoint& joints, const PathLimits& limits, double margin) {
  PlaceLimits at;
  double most_speed = limits.speed;
  for (size_t j = 0; j < 6; ++j) {
    most_speed = std::min(most_speed, limits.joint_velocity[j] / std::fabs(joints.first[j]));
    const double limit = margin * limits.joint_acceleration[j];
    at.first[j] = joints.first[j] / limit;
    at.second[j] = joints.second[j] / limit;
  }
  at.first[6] = 1 / (margin * limits.acceleration);
  at.second[6] = 0;
  at.most_square = most_speed * most_speed;
  return at;
}

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

void SetJerkRows(const PathPoint& joints, const PathLimits& limits, double margin,
                 StepLimits& step) {
  for (size_t j = 0; j < 6; ++j) {
    const double limit = margin * limits.joint_jerk[j];
    step.first[j] = joints.first[j] / (limit * step.h);
    step.second[j] = 3 * joints.second[j] / limit;
    step.third[j] = joints.third[j] / limit;
  }
  step.first[6] = 1 / (margin * limits.jerk * step.h);
  step.second[6] = 0;
  step.third[6] = 0;
}

Region AllowedAt(const PlaceLimits& at, double reference) {
  // Nor do they say much of much faster ones.
  constexpr double kFastest = 1.5;
  const double fastest = std::min(kFastest * kFastest * reference * reference, at.most_square);
  const double least = std::min(LeastSquare(reference), fastest);
  const double most = 1 / at.first[6];
  Region region({least, -most}, {fastest, most});
  for (size_t i = 0; i < 6; ++i) {
    if (std::fabs(at.second[i]) * fastest + std::fabs(at.first[i]) * most <= 1) continue;
    region.Cut({at.second[i], at.first[i], 1});
    region.Cut({-at.second[i], -at.first[i], 1});
  }
  return region;
}

// From rest at a constant jerk j: b = 3/2 h a, with a^3 = 6 h j^2.
PathState FromRest(const StepLimits& step) {
  double largest = 0;
  for (const double first : step.first) largest = std::max(largest, std::fabs(first));
  const double jerk = 1 / (largest * step.h);
  const double a = std::cbrt(6 * step.h * jerk * jerk);
  return {1.5 * step.h * a, a};
}

}  // namespace qal
