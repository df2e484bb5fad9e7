#include "agreement.h"

#include <algorithm>
#include <cmath>

#include "../../io/error.h"
#include "../../src/kinematics/ikfunc.h"

namespace qal::tools {

using namespace io;

RoadPoint AtJoints(const Joints& joints) {
  RoadPoint point;
  std::copy(joints.begin(), joints.end(), point.jointpos);
  point.ik_flag = true;
  if (!Ikfunc::ArmFk(point)) throw Failure("the solver's forward kinematics gives no pose");
  return point;
}

double AngleBetween(const Ori& a, const Ori& b) {
  // By both parts of the quaternion of the turn: the scalar one alone cannot tell small angles.
  const double w = a.w * b.w + a.x * b.x + a.y * b.y + a.z * b.z;
  const double x = a.w * b.x - a.x * b.w - a.y * b.z + a.z * b.y;
  const double y = a.w * b.y + a.x * b.z - a.y * b.w - a.z * b.x;
  const double z = a.w * b.z - a.x * b.y + a.y * b.x - a.z * b.w;
  return 2.0 * std::atan2(std::hypot(x, y, z), std::fabs(w));
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
