#include <cmath>

#include "../ikfunc.h"
#include "half_angle.h"

void Ikfunc::QuaternionToEulerAngle(Ori orientation, double* EulerAngle) {
  const auto [w, x, y, z] = orientation;
  EulerAngle[0] = std::atan2(2 * (w * x + y * z), 1 - 2 * (x * x + y * y));
  EulerAngle[1] = std::asin(2 * (w * y - x * z));
  EulerAngle[2] = std::atan2(2 * (w * z + x * y), 1 - 2 * (y * y + z * z));
}

void Ikfunc::EulerAngleToQuaternion(Ori& orientation, double* EulerAngle) {
  const auto [sr, cr] = qal::HalfAngle(EulerAngle[0]);
  const auto [sp, cp] = qal::HalfAngle(EulerAngle[1]);
  const auto [sy, cy] = qal::HalfAngle(EulerAngle[2]);
  orientation.w = cr * cp * cy + sr * sp * sy;
  orientation.x = sr * cp * cy - cr * sp * sy;
  orientation.y = cr * sp * cy + sr * cp * sy;
  orientation.z = cr * cp * sy - sr * sp * cy;
}

void Ikfunc::QuaternionToEulerDis(RoadPoint roadpoint1, RoadPoint roadpoint2, double* EulerDis) {
  double Euler1[3];
  double Euler2[3];
  QuaternionToEulerAngle(roadpoint1.orientation, Euler1);
  QuaternionToEulerAngle(roadpoint2.orientation, Euler2);
  for (int i = 0; i < 3; ++i) EulerDis[i] = Euler2[i] - Euler1[i];
}

void Ikfunc::QuaternionAddEuler(RoadPoint& roadpoint1, double* EulerDis) {
  double EulerTemp[3];
  QuaternionToEulerAngle(roadpoint1.orientation, EulerTemp);
  for (int i = 0; i < 3; ++i) EulerTemp[i] += EulerDis[i];
  EulerAngleToQuaternion(roadpoint1.orientation, EulerTemp);
}
