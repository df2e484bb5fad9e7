#ifndef QAL_KINEMATICS_SOLVE_POSE_ENCODING_H_
#define QAL_KINEMATICS_SOLVE_POSE_ENCODING_H_

#include <cmath>

namespace qal {

/// A pose as a solver takes it.
/// @param quaternion_wxyz scaled to length 1; a zero one makes the matrix NaN
/// @param eerot   out: 9 elements by rows
/// @param eetrans out: 3 coordinates
inline void EncodePose(const double (&position)[3], const double (&quaternion_wxyz)[4],
                       double* eerot, double* eetrans) {
  eetrans[0] = position[0];
  eetrans[1] = position[1];
  eetrans[2] = position[2];

  double qw = quaternion_wxyz[0];
  double qx = quaternion_wxyz[1];
  double qy = quaternion_wxyz[2];
  double qz = quaternion_wxyz[3];
  // A zero quaternion makes this infinite and the matrix NaN.
  const double scale = 1.0 / std::sqrt(qx * qx + qy * qy + qz * qz + qw * qw);
  qw *= scale;
  qx *= scale;
  qy *= scale;
  qz *= scale;
  eerot[0] = 1 - 2 * qy * qy - 2 * qz * qz;
  eerot[1] = 2 * qx * qy - 2 * qz * qw;
  eerot[2] = 2 * qx * qz + 2 * qy * qw;
  eerot[3] = 2 * qx * qy + 2 * qz * qw;
  eerot[4] = 1 - 2 * qx * qx - 2 * qz * qz;
  eerot[5] = 2 * qy * qz - 2 * qx * qw;
  eerot[6] = 2 * qx * qz - 2 * qy * qw;
  eerot[7] = 2 * qy * qz + 2 * qx * qw;
  eerot[8] = 1 - 2 * qx * qx - 2 * qy * qy;
}

}  // namespace qal

#endif  // QAL_KINEMATICS_SOLVE_POSE_ENCODING_H_
