#include "joints_tool.h"

#include "../model/rotations.h"
#include "../solve/kinematics.h"
#include "path_follower.h"

namespace qal {

namespace {

// With the twist T = sum q_j' A_j of the tool, v of the point at the origin and w, and derived
// twice,
//
//     p' = v + w x p    p'' = v' + w' x p + w x p'    p''' = v'' + w'' x p + 2 w' x p' + w x p''
PathPoint ToolPointOf(const Screws& screws, const PathPoint& joints) {
  const PlacedArm placed = screws.At(joints.value);
  MovingAxes axes(placed.axes);
  axes.SetFirst(joints.first);
  axes.SetSecond(joints.second);
  Twist first = {};
  Twist second = {};
  Twist third = {};
  for (size_t j = 0; j < 6; ++j) {
    first = first + joints.first[j] * axes.axis(j);
    second = second + joints.second[j] * axes.axis(j) + joints.first[j] * axes.change(j);
    third = third + joints.third[j] * axes.axis(j) + 2 * joints.second[j] * axes.change(j) +
            joints.first[j] * axes.second_change(j);
  }
  const Vector3& p = placed.tool.position;
  const Vector3 velocity = first.linear + Cross(first.angular, p);
  const Vector3 acceleration =
      second.linear + Cross(second.angular, p) + Cross(first.angular, velocity);
  const Vector3 jerk = third.linear + Cross(third.angular, p) +
                       2.0 * Cross(second.angular, velocity) + Cross(first.angular, acceleration);
  PathPoint point = {joints.s, {}, {}, {}, {}};
  for (size_t i = 0; i < 3; ++i) {
    const int k = static_cast<int>(i);
    point.value[i] = p[k];
    point.first[i] = velocity[k];
    point.second[i] = acceleration[k];
    point.third[i] = jerk[k];
    point.first[i + 3] = first.angular[k];
    point.second[i + 3] = second.angular[k];
    point.third[i + 3] = third.angular[k];
  }
  return point;
}

// What the turns from one place to the next add up to: Hermite's quadrature.
void AddTurns(const PathPoint& from, PathPoint& to) {
  const double h = to.s - from.s;
  for (size_t i = 3; i < 6; ++i) {
    to.value[i] =
        from.value[i] +
        h * ((from.first[i] + to.first[i]) / 2 +
             h * ((from.second[i] - to.second[i]) / 10 + h * (from.third[i] + to.third[i]) / 120));
  }
}

}  // namespace

JointsTool::JointsTool(const Arm& arm, const Screws& screws, const JointPath& joints,
                       const Pose& near)
    : ToolPath(joints.last().s - joints.begin(0)),
      arm_(arm),
      joints_(joints),
      tool_(ToolPointOf(screws, joints.At(joints.begin(0), 0))),
      near_(near) {
  constexpr int kParts = 2;
  for (size_t piece = 0; piece < joints.size(); ++piece) {
    for (int part = 1; part <= kParts; ++part) {
      const double s = joints.begin(piece) + joints.length(piece) * part / kParts;
      PathPoint point = ToolPointOf(screws, joints.At(s, piece));
      AddTurns(tool_.last(), point);
      tool_.Append(point);
    }
  }
}

Pose JointsTool::PoseAt(double x) const {
  const auto pose = Forward(arm_, joints_.At(joints_.begin(0) + x).value);
  // The solver had poses for the screws, so it has.
  if (!pose) return near_;
  return {pose->position, SignedAs(pose->orientation, near_.orientation)};
}

ToolRates JointsTool::RatesAt(double x) const {
  const auto [s, value, first, second, third] = tool_.At(tool_.begin(0) + x);
  const auto linear = [](const Joints& of) { return Vector3{{of[0], of[1], of[2]}}; };
  const auto angular = [](const Joints& of) { return Vector3{{of[3], of[4], of[5]}}; };
  return {linear(first),  linear(second),  linear(third),
          angular(first), angular(second), angular(third)};
}

}  // namespace qal
