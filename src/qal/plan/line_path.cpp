#include "line_path.h"

#include "../../kinematics/solve/pose_encoding.h"
#include "../model/rotations.h"

namespace qal {

namespace {

Quat Normalized(const Quat& q) {
  const double length = std::sqrt(q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z);
  return {q.w / length, q.x / length, q.y / length, q.z / length};
}

}  // namespace

LinePath::LinePath(const Pose& from, const Pose& to)
    : from_{from.position, Normalized(from.orientation)},
      to_{to.position, SignedAs(Normalized(to.orientation), from.orientation)},
      along_(ToVector(to.position) - ToVector(from.position)),
      length_m_(Length(along_)) {
  const auto [w, x, y, z] = to_.orientation * Conjugate(from_.orientation);
  const double sine = std::hypot(x, y, z);
  angle_rad_ = 2 * std::atan2(sine, w);
  // Without a turn any axis does.
  axis_ = sine > 0 ? Vector3{{x / sine, y / sine, z / sine}} : Vector3{{0, 0, 1}};
}

Pose LinePath::At(double s) const {
  if (s <= 0) return from_;
  if (s >= 1) return to_;
  const Vec3& p = from_.position;
  const double half = s * angle_rad_ / 2;
  const double sine = std::sin(half);
  const Quat turn = {std::cos(half), sine * axis_[0], sine * axis_[1], sine * axis_[2]};
  return {{p.x + s * along_[0], p.y + s * along_[1], p.z + s * along_[2]},
          turn * from_.orientation};
}

Frame LinePath::FrameAt(double s) const {
  const auto [p, q] = At(s);
  double position[3];
  double rotation[9];
  EncodePose({p.x, p.y, p.z}, {q.w, q.x, q.y, q.z}, rotation, position);
  return ToFrame(position, rotation);
}

// The tool's centre moves with `along`, so the point at the origin with along - turn x centre.
Twist LinePath::TwistAt(double s) const {
  const Vector3 turn = angle_rad_ * axis_;
  const Vector3 centre = ToVector(from_.position) + s * along_;
  return {along_ - Cross(turn, centre), turn};
}

Twist LinePath::TwistRate() const {
  return {-1.0 * Cross(angle_rad_ * axis_, along_), {{0, 0, 0}}};
}

}  // namespace qal
