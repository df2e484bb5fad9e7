#include "place_limits.h"

#include <algorithm>

namespace qal {

namespace {

constexpr Range kNowhere = {1, 0};

// Takes away the x for which |c + k x| > limit.
void Meet(double c, double k, double limit, Range& range) {
  // What hardly depends on x would only divide by zero.
  constexpr double kNothing = 1e-30;
  if (!(std::fabs(k) > kNothing)) {
    if (!(std::fabs(c) <= limit)) range = kNowhere;
    return;
  }
  const double per = 1 / k;
  const double middle = -c * per;
  const double half = limit * std::fabs(per);
  range.Meet(middle - half, middle + half);
}

// Likewise for vectors: |k|^2 x^2 + 2 c.k x + |c|^2 <= limit^2.
void Meet(const Vector3& c, const Vector3& k, double limit, Range& range) {
  if (limit == kNoLimit) return;
  const double square = Dot(k, k);
  const double half = Dot(c, k);
  const double rest = Dot(c, c) - limit * limit;
  constexpr double kNothing = 1e-30;
  if (!(square > kNothing)) {
    if (!(rest <= 0)) range = kNowhere;
    return;
  }
  const double discriminant = half * half - square * rest;
  if (!(discriminant >= 0)) {
    range = kNowhere;
    return;
  }
  const double root = std::sqrt(discriminant);
  range.Meet((-half - root) / square, (-half + root) / square);
}

}  // namespace

// cppcheck-suppress uninitMemberVar
PlaceLimits::PlaceLimits(const PathPoint& joints, const PathSection& section,  // NOLINT
                         const Margin& use) {
  for (size_t j = 0; j < 6; ++j) {
    first_[j] = joints.first[j];
    second_[j] = joints.second[j];
    third_[j] = joints.third[j];
    acceleration_[j] = use.acceleration * section.joint_acceleration[j];
    jerk_[j] = use.jerk * section.joint_jerk[j];
  }
  first_[6] = 1;
  second_[6] = 0;
  third_[6] = 0;
  acceleration_[6] = use.acceleration * section.acceleration;
  jerk_[6] = use.jerk * section.jerk;
  AddTool(section, joints.s, use);
}

void PlaceLimits::AddTool(const PathSection& section, double s, const Margin& use) {
  // Where the tool goes straight on, its limits are those of s.
  if (section.straight || section.tool == nullptr) return;
  const ToolRates tool = section.ToolAt(s);
  const ToolLimits& limits = section.tool_limits;
  vector_[0] = {tool.velocity, tool.acceleration, tool.jerk, use.acceleration * limits.acceleration,
                use.jerk * limits.jerk};
  vector_[1] = {tool.turn, tool.turn_acceleration, tool.turn_jerk,
                use.acceleration * limits.turn_acceleration, use.jerk * limits.turn_jerk};
  vectors_ = 2;
}

void PlaceLimits::MeetEarlier(const PathSection& section, double end, const Margin& use) {
  const auto meet = [](double limit, double& least) { least = std::min(least, limit); };
  for (size_t j = 0; j < 6; ++j) {
    meet(use.acceleration * section.joint_acceleration[j], acceleration_[j]);
    meet(use.jerk * section.joint_jerk[j], jerk_[j]);
  }
  meet(use.acceleration * section.acceleration, acceleration_[6]);
  meet(use.jerk * section.jerk, jerk_[6]);
  if (section.straight || section.tool == nullptr) return;
  if (vectors_ == 0) return AddTool(section, end, use);
  const ToolLimits& limits = section.tool_limits;
  meet(use.acceleration * limits.acceleration, vector_[0].acceleration);
  meet(use.jerk * limits.jerk, vector_[0].jerk);
  meet(use.acceleration * limits.turn_acceleration, vector_[1].acceleration);
  meet(use.jerk * limits.turn_jerk, vector_[1].jerk);
}

Range PlaceLimits::Accelerations(double speed) const {
  const double square = speed * speed;
  Range range;
  for (size_t i = 0; i < 7; ++i) Meet(second_[i] * square, first_[i], acceleration_[i], range);
  for (size_t i = 0; i < vectors_; ++i) {
    Meet(square * vector_[i].second, vector_[i].first, vector_[i].acceleration, range);
  }
  return range;
}

double PlaceLimits::AccelerationNeed(double speed, double acceleration) const {
  const double square = speed * speed;
  double most = 0;
  for (size_t i = 0; i < 7; ++i) {
    const double needed = second_[i] * square + first_[i] * acceleration;
    most = std::max(most, std::fabs(needed) / acceleration_[i]);
  }
  for (size_t i = 0; i < vectors_; ++i) {
    const Vector3 needed = square * vector_[i].second + acceleration * vector_[i].first;
    most = std::max(most, Length(needed) / vector_[i].acceleration);
  }
  return most;
}

// third v^3 + 3 second v (a + t j) + first j.
Range PlaceLimits::Jerks(double speed, double acceleration, double after_s) const {
  const double cube = speed * speed * speed;
  const double of_second = 3 * speed * acceleration;
  const double later = 3 * speed * after_s;
  Range range;
  for (size_t i = 0; i < 7; ++i) {
    Meet(third_[i] * cube + second_[i] * of_second, first_[i] + second_[i] * later, jerk_[i],
         range);
  }
  for (size_t i = 0; i < vectors_; ++i) {
    const Vector& v = vector_[i];
    Meet(cube * v.third + of_second * v.second, v.first + later * v.second, v.jerk, range);
  }
  return range;
}

// By Hermite's interpolation: f = (f0 + f1) / 2 + (f0' - f1') h / 8.
PlaceLimits PlaceLimits::Halfway(const PlaceLimits& from, const PlaceLimits& to, double h) {
  const double part = h / 8;
  const auto middle = [&](const auto& value0, const auto& slope0, const auto& value1,
                          const auto& slope1) {
    return 0.5 * (value0 + value1) + part * (slope0 - slope1);
  };
  PlaceLimits half = to;
  for (size_t i = 0; i < 7; ++i) {
    half.first_[i] = middle(from.first_[i], from.second_[i], to.first_[i], to.second_[i]);
    half.second_[i] = middle(from.second_[i], from.third_[i], to.second_[i], to.third_[i]);
    half.third_[i] = 0.5 * (from.third_[i] + to.third_[i]);
  }
  // Where the tool's limits begin or end there is nothing to interpolate.
  half.vectors_ = std::min(from.vectors_, to.vectors_);
  for (size_t i = 0; i < half.vectors_; ++i) {
    const Vector& u = from.vector_[i];
    const Vector& w = to.vector_[i];
    half.vector_[i].first = middle(u.first, u.second, w.first, w.second);
    half.vector_[i].second = middle(u.second, u.third, w.second, w.third);
    half.vector_[i].third = 0.5 * (u.third + w.third);
  }
  return half;
}

}  // namespace qal
