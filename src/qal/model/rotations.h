#ifndef QAL_MODEL_ROTATIONS_H_
#define QAL_MODEL_ROTATIONS_H_

/// @file
/// Arithmetic of quaternions.

#include <cmath>

#include "pose.h"

namespace qal {

/// The Hamilton product: the rotation `b`, then `a`.
constexpr Quat operator*(const Quat& a, const Quat& b) {
  return {
      a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z, a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
      a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x, a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w};
}

/// The inverse of a unit quaternion's rotation.
constexpr Quat Conjugate(const Quat& q) { return {q.w, -q.x, -q.y, -q.z}; }

/// Rotations about the fixed x, y and z axes, in this order [rad]:
/// R = Rz(rpy.z) * Ry(rpy.y) * Rx(rpy.x).
inline Quat FromRollPitchYawAngles(const Vec3& rpy_rad) {
  const Quat roll = {std::cos(rpy_rad.x / 2), std::sin(rpy_rad.x / 2), 0, 0};
  const Quat pitch = {std::cos(rpy_rad.y / 2), 0, std::sin(rpy_rad.y / 2), 0};
  const Quat yaw = {std::cos(rpy_rad.z / 2), 0, 0, std::sin(rpy_rad.z / 2)};
  return yaw * pitch * roll;
}

/// The angle of the rotation from one orientation to the other, 0 to pi [rad]. The quaternions need
/// not have length 1.
inline double AngleBetween(const Quat& a, const Quat& b) {
  // By both parts of the rotation's quaternion: the scalar one alone cannot tell small angles.
  const auto [w, x, y, z] = Conjugate(a) * b;
  return 2.0 * std::atan2(std::hypot(x, y, z), std::fabs(w));
}

/// Of `q` and -q, which are the same rotation, the one nearer `reference`.
constexpr Quat SignedAs(const Quat& q, const Quat& reference) {
  const double product =
      q.w * reference.w + q.x * reference.x + q.y * reference.y + q.z * reference.z;
  return product < 0.0 ? Quat{-q.w, -q.x, -q.y, -q.z} : q;
}

/// The distance of two positions [m].
inline double Distance(const Vec3& a, const Vec3& b) {
  return std::hypot(b.x - a.x, b.y - a.y, b.z - a.z);
}

}  // namespace qal

#endif  // QAL_MODEL_ROTATIONS_H_
