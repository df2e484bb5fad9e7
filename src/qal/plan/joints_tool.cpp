#include "joints_tool.h"

#include "../model/rotations.h"
#include "../solve/kinematics.h"
#include "path_follower.h"

namespace qal {

Pose JointsTool::PoseAt(double x) const {
  const auto pose = Forward(arm_, PointAt(x).value);
  // The solver had poses for the screws, so it has.
  if (!pose) return near_;
  return {pose->position, SignedAs(pose->orientation, near_.orientation)};
}

// With the twist T = sum q_j' A_j of the tool, v of the point at the origin and w, and derived
// twice,
//
//     p' = v + w x p    p'' = v' + w' x p + w x p'    p''' = v'' + w'' x p + 2 w' x p' + w x p''
ToolRates JointsTool::RatesAt(double x) const {
  const PathPoint point = PointAt(x);
  const PlacedArm placed = screws_.At(point.value);
  MovingAxes axes(placed.axes);
  axes.SetFirst(point.first);
  axes.SetSecond(point.second);
  Twist first = {};
  Twist second = {};
  Twist third = {};
  for (size_t j = 0; j < 6; ++j) {
    first = first + point.first[j] * axes.axis(j);
    second = second + point.second[j] * axes.axis(j) + point.first[j] * axes.change(j);
    third = third + point.third[j] * axes.axis(j) + 2 * point.second[j] * axes.change(j) +
            point.first[j] * axes.second_change(j);
  }
  const Vector3& p = placed.tool.position;
  ToolRates rates = {{}, {}, {}, first.angular, second.angular, third.angular};
  rates.velocity = first.linear + Cross(rates.turn, p);
  rates.acceleration =
      second.linear + Cross(rates.turn_acceleration, p) + Cross(rates.turn, rates.velocity);
  rates.jerk = third.linear + Cross(rates.turn_jerk, p) +
               2.0 * Cross(rates.turn_acceleration, rates.velocity) +
               Cross(rates.turn, rates.acceleration);
  return rates;
}

}  // namespace qal
