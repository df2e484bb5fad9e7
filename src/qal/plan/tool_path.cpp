#include "tool_path.h"

#include "../../kinematics/solve/pose_encoding.h"
#include "../model/rotations.h"

namespace qal {

Quat Normalized(const Quat& q) {
  const double length = std::sqrt(q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z);
  return {q.w / length, q.x / length, q.y / length, q.z / length};
}

Quat RotationQuat(const Vector3& axis, double angle_rad) {
  const double half = angle_rad / 2;
  const double sine = std::sin(half);
  return {std::cos(half), sine * axis[0], sine * axis[1], sine * axis[2]};
}

Frame FrameOf(const Pose& pose) {
  const auto& [p, q] = pose;
  double position[3];
  double rotation[9];
  EncodePose({p.x, p.y, p.z}, {q.w, q.x, q.y, q.z}, rotation, position);
  return ToFrame(position, rotation);
}

SteadyTurn::SteadyTurn(const Quat& from, const Quat& to)
    : from_(Normalized(from)), to_(SignedAs(Normalized(to), from)) {
  const auto [w, x, y, z] = to_ * Conjugate(from_);
  const double sine = std::hypot(x, y, z);
  angle_rad_ = 2 * std::atan2(sine, w);
  // Without a turn any axis does.
  axis_ = sine > 0 ? Vector3{{x / sine, y / sine, z / sine}} : Vector3{{0, 0, 1}};
}

SteadyTurn::SteadyTurn(const Quat& from, const Vector3& axis, double angle_rad)
    : from_(Normalized(from)),
      to_(RotationQuat(axis, angle_rad) * from_),
      axis_(axis),
      angle_rad_(angle_rad) {}

Quat SteadyTurn::At(double part) const {
  if (part <= 0) return from_;
  if (part >= 1) return to_;
  return RotationQuat(axis_, part * angle_rad_) * from_;
}

}  // namespace qal
