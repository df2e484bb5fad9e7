#include "../ikfunc.h"
#include "half_angle.h"

Pos Ikfunc::EndMoveXYZ(const Ori& end_ori, const Pos& mov_dst) {
  const auto [w, x, y, z] = end_ori;
  // Rotation matrix of a quaternion that need not be unit: the unit one's times |q|^2.
  const double RPY[3][3] = {
      {w * w + x * x - y * y - z * z, 2 * (x * y - w * z), 2 * (x * z + w * y)},
      {2 * (x * y + w * z), w * w - x * x + y * y - z * z, 2 * (y * z - w * x)},
      {2 * (x * z - w * y), 2 * (y * z + w * x), w * w - x * x - y * y + z * z}};
  const double rela_dst[3] = {mov_dst.x, mov_dst.y, mov_dst.z};
  double world_dst[3] = {0.0, 0.0, 0.0};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) world_dst[i] += RPY[i][j] * rela_dst[j];
  }
  return Pos(world_dst[0], world_dst[1], world_dst[2]);
}

Pos Ikfunc::WorldMoveXYZ(const Pos& ori_pos, const Pos& dis) { return ori_pos + dis; }

Ori Ikfunc::EndRotXYZ(const Ori& end_ori, const Roz& rel_ori) {
  Ori roztemp;
  if (rel_ori.x != 0.0) {  // NaN is not 0: the result is then NaN throughout
    const auto [sine, cosine] = qal::HalfAngle(rel_ori.x);
    roztemp = Ori(cosine, sine, 0.0, 0.0);
  } else if (rel_ori.y != 0.0) {
    const auto [sine, cosine] = qal::HalfAngle(rel_ori.y);
    roztemp = Ori(cosine, 0.0, sine, 0.0);
  } else if (rel_ori.z != 0.0) {
    const auto [sine, cosine] = qal::HalfAngle(rel_ori.z);
    roztemp = Ori(cosine, 0.0, 0.0, sine);
  } else {
    return end_ori;  // no rotation; the product with the zero quaternion would not be one
  }
  // Left-multiplication matrix: end_ori times the increment, which so acts in the tool frame.
  const auto [q0, q1, q2, q3] = end_ori;
  const double q[4][4] = {
      {q0, -q1, -q2, -q3}, {q1, q0, -q3, q2}, {q2, q3, q0, -q1}, {q3, -q2, q1, q0}};
  const double RozBC[4] = {roztemp.w, roztemp.x, roztemp.y, roztemp.z};
  double RozCA[4] = {0.0, 0.0, 0.0, 0.0};
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) RozCA[i] += q[i][j] * RozBC[j];
  }
  return Ori(RozCA[0], RozCA[1], RozCA[2], RozCA[3]);
}

RoadPoint Ikfunc::RelatMove(const RoadPoint& end_pos, const Pos& mov_dst) {
  RoadPoint result = end_pos;
  result.position = end_pos.position + EndMoveXYZ(end_pos.orientation, mov_dst);
  return result;
}

RoadPoint Ikfunc::RelatRot(const RoadPoint& end_pos, const Roz& rot_dst) {
  RoadPoint result = end_pos;
  result.orientation = EndRotXYZ(end_pos.orientation, rot_dst);
  return result;
}

RoadPoint Ikfunc::PointDis(RoadPoint& roadpoint1, RoadPoint& roadpoint2) {
  const Ori& q1 = roadpoint1.orientation;
  const Ori& q2 = roadpoint2.orientation;
  RoadPoint result;
  result.position = roadpoint1.position - roadpoint2.position;
  result.orientation = Ori(q1.w - q2.w, q1.x - q2.x, q1.y - q2.y, q1.z - q2.z);
  return result;
}

RoadPoint Ikfunc::PointAdd(RoadPoint& roadpoint1, RoadPoint& roadpoint_dis) {
  const Ori& q1 = roadpoint1.orientation;
  const Ori& q2 = roadpoint_dis.orientation;
  RoadPoint result;
  result.position = roadpoint1.position + roadpoint_dis.position;
  result.orientation = Ori(q1.w + q2.w, q1.x + q2.x, q1.y + q2.y, q1.z + q2.z);
  return result;
}
