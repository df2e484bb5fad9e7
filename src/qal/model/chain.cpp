#include "chain.h"

#include "frames.h"

namespace qal {

Matrix3 RotationMatrix(const Vector3& axis, double angle) {
  const double s = std::sin(angle);
  const double c = std::cos(angle);
  const Vector3 v = (1 - c) * axis;
  const Vector3 w = s * axis;
  return {{{{v[0] * axis[0] + c, v[0] * axis[1] - w[2], v[0] * axis[2] + w[1]}},
           {{v[1] * axis[0] + w[2], v[1] * axis[1] + c, v[1] * axis[2] - w[0]}},
           {{v[2] * axis[0] - w[1], v[2] * axis[1] + w[0], v[2] * axis[2] + c}}}};
}

Transform operator*(const Transform& outer, const Transform& inner) {
  return FromFrame(ToFrame(outer) * ToFrame(inner));
}

Transform RotationAbout(const Vec3& axis, double angle_rad) {
  return FromFrame({RotationMatrix(ToVector(axis), angle_rad), {{0, 0, 0}}});
}

Transform FromRollPitchYaw(const Vec3& rpy_rad) {
  return RotationAbout({0, 0, 1}, rpy_rad.z) *
         (RotationAbout({0, 1, 0}, rpy_rad.y) * RotationAbout({1, 0, 0}, rpy_rad.x));
}

Transform TipFrame(const ArmDescription& arm, const Joints& joints) {
  Frame frame = kIdentity;
  for (size_t j = 0; j < joints.size(); ++j) {
    const JointDescription& joint = arm.joints[j];
    frame = frame * ToFrame(joint.origin) *
            Frame{RotationMatrix(ToVector(joint.axis), joints[j]), {{0, 0, 0}}};
  }
  return FromFrame(frame * ToFrame(arm.tip_in_last));
}

std::array<AxisLine, 6> AxesAtZero(const ArmDescription& arm) {
  std::array<AxisLine, 6> axes = {};
  Frame frame = kIdentity;
  for (size_t j = 0; j < axes.size(); ++j) {
    frame = frame * ToFrame(arm.joints[j].origin);
    axes[j] = {FromVector(frame.position),
               FromVector(frame.rotation * ToVector(arm.joints[j].axis))};
  }
  return axes;
}

double LongestReach(const ArmDescription& arm) {
  double reach = Length(ToVector(arm.tip_in_last.position));
  for (size_t j = 1; j < arm.joints.size(); ++j) {
    reach += Length(ToVector(arm.joints[j].origin.position));
  }
  return reach;
}

}  // namespace qal
