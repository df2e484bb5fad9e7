#include "agreement.h"

#include <algorithm>
#include <cmath>

#include "../../src/kinematics/ikfunc.h"
#include "../common/error.h"

namespace qal::tools {

namespace {

double AngleBetween(const Ori& a, const Ori& b) {
  const Ori c = SignedAs(b, a);
  const double chord = std::sqrt((a.w - c.w) * (a.w - c.w) + (a.x - c.x) * (a.x - c.x) +
                                 (a.y - c.y) * (a.y - c.y) + (a.z - c.z) * (a.z - c.z));
  return 4.0 * std::asin(std::min(1.0, chord / 2.0));
}

}  // namespace

RoadPoint AtJoints(const Joints& joints) {
  RoadPoint point;
  std::copy(joints.begin(), joints.end(), point.jointpos);
  point.ik_flag = true;
  if (!Ikfunc::ArmFk(point)) throw Failure("the solver's forward kinematics gives no pose");
  return point;
}

Gap GapAt(const RoadPoint& point) {
  Joints joints;
  std::copy(point.jointpos, point.jointpos + 6, joints.begin());
  const RoadPoint reached = AtJoints(joints);
  const Pos miss = reached.position - point.position;
  return {std::sqrt(miss.x * miss.x + miss.y * miss.y + miss.z * miss.z),
          AngleBetween(reached.orientation, point.orientation)};
}

Ori SignedAs(const Ori& q, const Ori& reference) {
  const double product =
      q.w * reference.w + q.x * reference.x + q.y * reference.y + q.z * reference.z;
  return product < 0.0 ? Ori(-q.w, -q.x, -q.y, -q.z) : q;
}

}  // namespace qal::tools
