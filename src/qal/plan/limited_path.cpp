#include "limited_path.h"

#include <algorithm>
#include <cmath>

namespace qal {

// cppcheck-suppress uninitMemberVar
LimitedRates::LimitedRates(const PathPoint& joints, const PathSection& section)  // NOLINT
    : most_speed_(section.speed) {
  for (size_t j = 0; j < 6; ++j) {
    most_speed_ = std::min(most_speed_, section.joint_velocity[j] / std::fabs(joints.first[j]));
    rate_[count_++] = {joints.first[j], joints.second[j], joints.third[j],
                       section.joint_acceleration[j], section.joint_jerk[j]};
  }
  if (section.straight) rate_[count_++] = {1, 0, 0, section.acceleration, section.jerk};
  if (section.straight || section.tool == nullptr) return;
  const ToolRates tool = section.ToolAt(joints.s);
  const ToolLimits& limits = section.tool_limits;
  AddVector(tool.velocity, tool.acceleration, tool.jerk, limits.speed, limits.acceleration,
            limits.jerk);
  AddVector(tool.turn, tool.turn_acceleration, tool.turn_jerk, limits.turn_speed,
            limits.turn_acceleration, limits.turn_jerk);
}

// A vector's length is at most 2 % more than the largest of its parts along directions that are
// 22.5 degrees apart; the law's rounds see to the rest.
void LimitedRates::AddVector(const Vector3& first, const Vector3& second, const Vector3& third,
                             double speed, double acceleration, double jerk) {
  // Less than this, in the units of the path, is no motion.
  constexpr double kNothing = 1e-9;
  const double length = Length(first);
  if (length > 0) most_speed_ = std::min(most_speed_, speed / length);
  const bool moves = length > kNothing;
  Vector3 ahead = moves ? (1 / length) * first : Vector3{{0, 0, 0}};
  Vector3 across = second - Dot(second, ahead) * ahead;
  double bend = Length(across);
  if (!(bend > kNothing)) {
    across = third - Dot(third, ahead) * ahead;
    bend = Length(across);
  }
  const bool bends = bend > kNothing;
  if (bends) across = (1 / bend) * across;
  const auto add = [&](const Vector3& direction) {
    rate_[count_++] = {Dot(direction, first), Dot(direction, second), Dot(direction, third),
                       acceleration, jerk};
  };
  if (moves) add(ahead);
  if (bends) add(across);
  if (!moves || !bends) return;
  for (int i = 1; i < kDirections; ++i) {
    if (2 * i == kDirections) continue;  // across
    const double angle = kPi * i / kDirections;
    add(std::cos(angle) * ahead + std::sin(angle) * across);
  }
}

}  // namespace qal
