#include "arm.h"

#include <cmath>

namespace qal::tools {

Frame operator*(const Frame& outer, const Frame& inner) {
  return {outer.rotation * inner.rotation, outer.position + outer.rotation * inner.position};
}

double Length(const Vector3& v) { return std::hypot(v[0], v[1], v[2]); }

Matrix3 RotationAbout(const Vector3& axis, double angle) {
  const double s = std::sin(angle);
  const double c = std::cos(angle);
  const Vector3 v = (1 - c) * axis;
  const Vector3 w = s * axis;
  return {{{{v[0] * axis[0] + c, v[0] * axis[1] - w[2], v[0] * axis[2] + w[1]}},
           {{v[1] * axis[0] + w[2], v[1] * axis[1] + c, v[1] * axis[2] - w[0]}},
           {{v[2] * axis[0] - w[1], v[2] * axis[1] + w[0], v[2] * axis[2] + c}}}};
}

Matrix3 FromRollPitchYaw(const Vector3& rpy) {
  return RotationAbout({{0, 0, 1}}, rpy[2]) *
         (RotationAbout({{0, 1, 0}}, rpy[1]) * RotationAbout({{1, 0, 0}}, rpy[0]));
}

Frame TipFrame(const Arm& arm, const std::array<double, 6>& joints) {
  Frame frame = kIdentity;
  for (size_t j = 0; j < joints.size(); ++j) {
    const ArmJoint& joint = arm.joints[j];
    frame = frame * joint.origin * Frame{RotationAbout(joint.axis, joints[j]), {{0, 0, 0}}};
  }
  return frame * arm.tip_in_last;
}

std::array<AxisLine, 6> AxesAtZero(const Arm& arm) {
  std::array<AxisLine, 6> axes;
  Frame frame = kIdentity;
  for (size_t j = 0; j < axes.size(); ++j) {
    frame = frame * arm.joints[j].origin;
    axes[j] = {frame.position, frame.rotation * arm.joints[j].axis};
  }
  return axes;
}

double LongestReach(const Arm& arm) {
  double reach = Length(arm.tip_in_last.position);
  for (size_t j = 1; j < arm.joints.size(); ++j) reach += Length(arm.joints[j].origin.position);
  return reach;
}

}  // namespace qal::tools
