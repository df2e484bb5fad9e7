#include "posture.h"

#include <cmath>

#include "../model/family.h"
#include "solver_calls.h"

namespace qal {

namespace {

// Two axes that may each be as far from the nearest member of a family as that takes.
constexpr double kParallelRad = 2 * kFamilyAngleToleranceRad;
constexpr double kMeetingM = 2 * kFamilyDistanceToleranceM;

bool Parallel(const Line& a, const Line& b) {
  return AngleBetween(a.direction, b.direction) <= kParallelRad;
}

// From one direction to the other about an axis at right angles to both, -pi to pi.
double TurnBetween(const Vector3& a, const Vector3& b, const Vector3& axis) {
  const Vector3 cross = Cross(a, b);
  return std::atan2(std::copysign(Length(cross), Dot(cross, axis)), Dot(a, b));
}

}  // namespace

std::optional<Posture> PostureOf(const JacobianMatrix& jacobian, const Vector3& tool_centre) {
  Line axis[6];
  for (size_t j = 0; j < 6; ++j) axis[j] = AxisOf(jacobian, j, tool_centre);
  if (!Parallel(axis[1], axis[2]) || Parallel(axis[0], axis[1]) || Parallel(axis[4], axis[5])) {
    return std::nullopt;
  }
  // In either family the wrist's centre is where axes 5 and 6 meet; the forearm ends there, or on a
  // third parallel axis.
  const Vector3 centre = MeetingOf(axis[4], axis[5]).point;
  const bool three_parallel = Parallel(axis[2], axis[3]);
  if (!three_parallel && !(DistanceFrom(axis[3], centre) <= kMeetingM)) return std::nullopt;
  // The links as axis 2 sees them: without what goes along it.
  const auto across = [&](const Vector3& v) {
    return v - Dot(v, axis[1].direction) * axis[1].direction;
  };
  const Vector3 upper_arm = across(axis[2].point - axis[1].point);
  const Vector3 forearm = across((three_parallel ? axis[3].point : centre) - axis[2].point);
  const Vector3 normal = Cross(axis[1].direction, axis[0].direction);
  const Vector3 forward = (1 / Length(normal)) * normal;
  const Vector3 shoulder = MeetingOf(axis[1], axis[0]).point;
  return Posture{forward,
                 Dot(centre - axis[0].point, forward),
                 Dot(shoulder - axis[0].point, forward),
                 shoulder,
                 axis[0].direction,
                 TurnBetween(upper_arm, forearm, axis[1].direction),
                 TurnBetween(axis[3].direction, axis[5].direction, axis[4].direction)};
}

}  // namespace qal
