#include "euler.h"

#include <cmath>

#include "half_angle.h"

namespace qal {

void QuaternionToEuler(const Ori& orientation, double* euler) {
  const auto [w, x, y, z] = orientation;
  euler[0] = std::atan2(2 * (w * x + y * z), 1 - 2 * (x * x + y * y));
  euler[1] = std::asin(2 * (w * y - x * z));
  euler[2] = std::atan2(2 * (w * z + x * y), 1 - 2 * (y * y + z * z));
}

void EulerToQuaternion(const double* euler, Ori& orientation) {
  const auto [sr, cr] = HalfAngle(euler[0]);
  const auto [sp, cp] = HalfAngle(euler[1]);
  const auto [sy, cy] = HalfAngle(euler[2]);
  orientation.w = cr * cp * cy + sr * sp * sy;
  orientation.x = sr * cp * cy - cr * sp * sy;
  orientation.y = cr * sp * cy + sr * cp * sy;
  orientation.z = cr * cp * sy - sr * sp * cy;
}

void EulerDifference(const Ori& from, const Ori& to, double* difference) {
  double from_euler[3];
  double to_euler[3];
  QuaternionToEuler(from, from_euler);
  QuaternionToEuler(to, to_euler);
  for (int i = 0; i < 3; ++i) difference[i] = to_euler[i] - from_euler[i];
}

void AddEuler(const double* difference, Ori& orientation) {
  double euler[3];
  QuaternionToEuler(orientation, euler);
  for (int i = 0; i < 3; ++i) euler[i] += difference[i];
  EulerToQuaternion(euler, orientation);
}

}  // namespace qal
