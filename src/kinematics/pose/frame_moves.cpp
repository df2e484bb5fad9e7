#include "frame_moves.h"

#include "half_angle.h"

namespace qal {

Pos ToBaseFrame(const Ori& orientation, const Pos& displacement) {
  const auto [w, x, y, z] = orientation;
  // Rotation matrix of a quaternion that need not be unit: the unit one's times |q|^2.
  const double rotation[3][3] = {
      {w * w + x * x - y * y - z * z, 2 * (x * y - w * z), 2 * (x * z + w * y)},
      {2 * (x * y + w * z), w * w - x * x + y * y - z * z, 2 * (y * z - w * x)},
      {2 * (x * z - w * y), 2 * (y * z + w * x), w * w - x * x - y * y + z * z}};
  const double in_tool[3] = {displacement.x, displacement.y, displacement.z};
  double in_base[3] = {0.0, 0.0, 0.0};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) in_base[i] += rotation[i][j] * in_tool[j];
  }
  return Pos(in_base[0], in_base[1], in_base[2]);
}

Ori TurnedAboutToolAxis(const Ori& orientation, const Roz& angles) {
  Ori increment;
  if (angles.x != 0.0) {  // NaN is not 0: the result is then NaN throughout
    const auto [sine, cosine] = HalfAngle(angles.x);
    increment = Ori(cosine, sine, 0.0, 0.0);
  } else if (angles.y != 0.0) {
    const auto [sine, cosine] = HalfAngle(angles.y);
    increment = Ori(cosine, 0.0, sine, 0.0);
  } else if (angles.z != 0.0) {
    const auto [sine, cosine] = HalfAngle(angles.z);
    increment = Ori(cosine, 0.0, 0.0, sine);
  } else {
    return orientation;  // no rotation; the product with the zero quaternion would not be one
  }
  // Left-multiplication matrix: the orientation times the increment, which so acts in the tool
  // frame.
  const auto [q0, q1, q2, q3] = orientation;
  const double q[4][4] = {
      {q0, -q1, -q2, -q3}, {q1, q0, -q3, q2}, {q2, q3, q0, -q1}, {q3, -q2, q1, q0}};
  const double factor[4] = {increment.w, increment.x, increment.y, increment.z};
  double product[4] = {0.0, 0.0, 0.0, 0.0};
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) product[i] += q[i][j] * factor[j];
  }
  return Ori(product[0], product[1], product[2], product[3]);
}

RoadPoint MovedInToolFrame(const RoadPoint& point, const Pos& displacement) {
  RoadPoint moved = point;
  moved.position = point.position + ToBaseFrame(point.orientation, displacement);
  return moved;
}

RoadPoint TurnedInToolFrame(const RoadPoint& point, const Roz& angles) {
  RoadPoint turned = point;
  turned.orientation = TurnedAboutToolAxis(point.orientation, angles);
  return turned;
}

RoadPoint PoseDifference(const RoadPoint& a, const RoadPoint& b) {
  const Ori& qa = a.orientation;
  const Ori& qb = b.orientation;
  RoadPoint result;
  result.position = a.position - b.position;
  result.orientation = Ori(qa.w - qb.w, qa.x - qb.x, qa.y - qb.y, qa.z - qb.z);
  return result;
}

RoadPoint PoseSum(const RoadPoint& a, const RoadPoint& b) {
  const Ori& qa = a.orientation;
  const Ori& qb = b.orientation;
  RoadPoint result;
  result.position = a.position + b.position;
  result.orientation = Ori(qa.w + qb.w, qa.x + qb.x, qa.y + qb.y, qa.z + qb.z);
  return result;
}

RoadPoint JogTarget(const RoadPoint& current, int coordinate, int move_mode, double step) {
  constexpr int kToolFrame = 1;
  if (move_mode < 0 || move_mode > 5) return current;
  const bool translation = move_mode < 3;
  // One axis gets the step, the others stay 0.
  const auto on_axis = [step, axis = move_mode % 3](int i) { return i == axis ? step : 0.0; };

  if (coordinate == kToolFrame) {
    return translation ? MovedInToolFrame(current, Pos(on_axis(0), on_axis(1), on_axis(2)))
                       : TurnedInToolFrame(current, Roz(on_axis(0), on_axis(1), on_axis(2)));
  }
  RoadPoint target = current;
  // Rotations about the base axes are not offered: the pose stays.
  if (move_mode == 0) target.position.x += step;
  if (move_mode == 1) target.position.y += step;
  if (move_mode == 2) target.position.z += step;
  return target;
}

}  // namespace qal
