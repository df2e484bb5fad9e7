#ifndef QAL_KINEMATICS_POSE_HALF_ANGLE_H_
#define QAL_KINEMATICS_POSE_HALF_ANGLE_H_

#include <cmath>

namespace qal {

/// Sine and cosine of half a rotation angle, as a quaternion takes them.
struct HalfAngle {
  double sine;
  double cosine;

  explicit HalfAngle(double angle_rad) {
    const double half = angle_rad * 0.5;
    ::sincos(half, &sine, &cosine);
  }
};

}  // namespace qal

#endif  // QAL_KINEMATICS_POSE_HALF_ANGLE_H_
