#include "nearest_member.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qal {

namespace {

using Kind = AxisCondition::Kind;

// What an axis is moved by: two parts of its direction, in lengths of an arm with the weight; two
// of its point. All in metres, across the axis.
constexpr size_t kMoves = 4;
using Moves = std::array<double, 6 * kMoves>;
constexpr double kAngleWeightM = kFamilyDistanceToleranceM / kFamilyAngleToleranceRad;

// Two directions across another.
struct Across {
  Vector3 first, second;
  explicit Across(const Vector3& direction) {
    const Vector3 other = std::fabs(direction[0]) < 0.6 ? Vector3{{1, 0, 0}} : Vector3{{0, 1, 0}};
    first = Cross(direction, other);
    first = (1 / Length(first)) * first;
    second = Cross(direction, first);
  }
};

Axes Moved(const Axes& axes, const Moves& by) {
  Axes moved = axes;
  for (size_t j = 0; j < axes.size(); ++j) {
    const Across across(axes[j].direction);
    const double* const b = &by[kMoves * j];
    const Vector3 direction = axes[j].direction + (b[0] / kAngleWeightM) * across.first +
                              (b[1] / kAngleWeightM) * across.second;
    moved[j].direction = (1 / Length(direction)) * direction;
    moved[j].point = axes[j].point + b[2] * across.first + b[3] * across.second;
  }
  return moved;
}

const Line& Numbered(const Axes& axes, size_t number) { return axes[number - 1]; }

// What is left of the conditions: numbers that are 0 where they are met, and smooth. `start` are
// the axes that directions across are taken from.
std::vector<double> Residuals(const Axes& start, const Axes& axes,
                              const AxisConditions& conditions) {
  std::vector<double> residuals;
  for (const auto& [kind, a, b] : conditions) {
    const Line& line = Numbered(axes, a);
    const Across across(Numbered(start, a).direction);
    Vector3 off;
    if (kind == Kind::kThroughCentre) {
      off = Cross(MeetingOf(axes[4], axes[3]).point - line.point, line.direction);
    } else {
      const Line& other = Numbered(axes, b);
      off = Cross(line.direction, other.direction);
      if (kind == Kind::kRightAngle) residuals.push_back(Dot(line.direction, other.direction));
      if (kind == Kind::kMeeting) residuals.push_back(Dot(other.point - line.point, off));
      if (kind != Kind::kParallel) continue;
    }
    residuals.push_back(Dot(off, across.first));
    residuals.push_back(Dot(off, across.second));
  }
  return residuals;
}

using Rows = std::vector<std::vector<double>>;

// Solves m * x = right, with row pivots.
std::vector<double> Solved(Rows m, std::vector<double> right) {
  const size_t n = right.size();
  for (size_t k = 0; k < n; ++k) {
    size_t pivot = k;
    for (size_t i = k + 1; i < n; ++i) {
      if (std::fabs(m[i][k]) > std::fabs(m[pivot][k])) pivot = i;
    }
    std::swap(m[k], m[pivot]);
    std::swap(right[k], right[pivot]);
    for (size_t i = k + 1; i < n; ++i) {
      const double factor = m[i][k] / m[k][k];
      for (size_t j = k; j < n; ++j) m[i][j] -= factor * m[k][j];
      right[i] -= factor * right[k];
    }
  }
  for (size_t k = n; k-- > 0;) {
    for (size_t j = k + 1; j < n; ++j) right[k] -= m[k][j] * right[j];
    right[k] /= m[k][k];
  }
  return right;
}

// One Gauss-Newton step: the least moves with which the conditions, linear about `by`, are met.
Moves Stepped(const Axes& start, const Moves& by, const AxisConditions& conditions) {
  constexpr double kDifferenceM = 1e-6;
  const std::vector<double> residuals = Residuals(start, Moved(start, by), conditions);
  const size_t n = residuals.size();
  std::vector<Moves> jacobian(n);
  for (size_t i = 0; i < by.size(); ++i) {
    Moves more = by;
    Moves less = by;
    more[i] += kDifferenceM;
    less[i] -= kDifferenceM;
    const std::vector<double> above = Residuals(start, Moved(start, more), conditions);
    const std::vector<double> below = Residuals(start, Moved(start, less), conditions);
    for (size_t k = 0; k < n; ++k) jacobian[k][i] = (above[k] - below[k]) / (2 * kDifferenceM);
  }
  const auto product = [](const Moves& a, const Moves& b) {
    double sum = 0;
    for (size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
    return sum;
  };
  Rows gram(n, std::vector<double>(n));
  std::vector<double> right(n);
  for (size_t k = 0; k < n; ++k) {
    right[k] = product(jacobian[k], by) - residuals[k];
    for (size_t l = 0; l < n; ++l) gram[k][l] = product(jacobian[k], jacobian[l]);
  }
  const std::vector<double> weights = Solved(std::move(gram), std::move(right));
  Moves next = {};
  for (size_t k = 0; k < n; ++k) {
    for (size_t i = 0; i < next.size(); ++i) next[i] += weights[k] * jacobian[k][i];
  }
  return next;
}

// The axes with their points where they come nearest to the axes before and after them. A parallel
// axis comes as near everywhere: it counts only where there is no other.
Axes Placed(const Axes& axes) {
  constexpr double kParallelSine = 0.1;
  constexpr double kParallelWeight = 1e-6;
  Axes placed = axes;
  for (size_t j = 0; j < axes.size(); ++j) {
    Vector3 sum = {{0, 0, 0}};
    double weights = 0;
    for (const size_t k : {j - 1, j + 1}) {
      if (k >= axes.size()) continue;
      const Line& line = axes[j];
      const bool parallel = Length(Cross(line.direction, axes[k].direction)) < kParallelSine;
      const double along = Dot(axes[k].point - line.point, line.direction);
      const double weight = parallel ? kParallelWeight : 1;
      sum = sum + weight * (parallel ? line.point + along * line.direction
                                     : MeetingOf(line, axes[k]).point);
      weights += weight;
    }
    placed[j].point = (1 / weights) * sum;
  }
  return placed;
}

}  // namespace

double Unmet(const Axes& axes, const AxisCondition& condition) {
  const Line& line = Numbered(axes, condition.a);
  if (condition.kind == Kind::kThroughCentre) {
    return DistanceFrom(line, MeetingOf(axes[4], axes[3]).point);
  }
  const Line& other = Numbered(axes, condition.b);
  if (condition.kind == Kind::kMeeting) return MeetingOf(line, other).distance;
  const double angle = AngleBetween(line.direction, other.direction);
  return condition.kind == Kind::kParallel ? angle : kPi / 2 - angle;
}

Axes NearestMember(const Axes& axes, const AxisConditions& conditions) {
  constexpr double kRoundingRad = 1e-12;
  constexpr int kMostSteps = 20;
  const auto met = [&](const AxisCondition& c) { return Unmet(axes, c) <= kRoundingRad; };
  if (std::all_of(conditions.begin(), conditions.end(), met)) return axes;
  const Axes start = Placed(axes);
  Moves by = {};
  for (int n = 0; n < kMostSteps; ++n) {
    const Moves next = Stepped(start, by, conditions);
    double change = 0;
    for (size_t i = 0; i < by.size(); ++i) change = std::max(change, std::fabs(next[i] - by[i]));
    by = next;
    if (change < 1e-15) break;
  }
  return Moved(start, by);
}

AxisDeviation DeviationOf(const Axes& axes, const Axes& others) {
  const Axes placed = Placed(axes);
  AxisDeviation deviation;
  for (size_t j = 0; j < axes.size(); ++j) {
    deviation.angle_rad =
        std::max(deviation.angle_rad, AngleBetween(placed[j].direction, others[j].direction));
    deviation.distance_m = std::max(deviation.distance_m, DistanceFrom(others[j], placed[j].point));
  }
  return deviation;
}

}  // namespace qal
