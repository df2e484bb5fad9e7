#ifndef QAL_KINEMATICS_SOLVE_POSE_ENCODING_H_
#define QAL_KINEMATICS_SOLVE_POSE_ENCODING_H_

#include <cmath>

namespace qal {

/// The matrix by rows of a quaternion w, x, y, z times `scale`, which makes it one of length 1.
/// Inlined, for it is compiled for whatever processor the caller is.
/// @tparam T    a number, or several side by side
/// @param eerot out: 9 elements
template <class T>
[[gnu::always_inline]] inline void WriteRotation(const T& w, const T& x, const T& y, const T& z,
                                                 const T& scale, T* eerot) {
  const T qw = w * scale;
  const T qx = x * scale;
  const T qy = y * scale;
  const T qz = z * scale;
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

/// The square of a quaternion's length, summed in this order.
template <class T>
[[gnu::always_inline]] inline T SquareOfLength(const T& w, const T& x, const T& y, const T& z) {
  return x * x + y * y + z * z + w * w;
}

/// A pose as a solver takes it: the position unchanged, the matrix of the normalised quaternion by
/// rows. The zero quaternion gives a matrix of NaN, which a solver has to refuse.
/// @param eerot   out: 9 elements
/// @param eetrans out: 3 coordinates
inline void EncodePose(const double (&position)[3], const double (&quaternion_wxyz)[4],
                       double* eerot, double* eetrans) {
  eetrans[0] = position[0];
  eetrans[1] = position[1];
  eetrans[2] = position[2];
  const double(&q)[4] = quaternion_wxyz;
  // A zero quaternion makes this infinite and the matrix NaN.
  const double scale = 1.0 / std::sqrt(SquareOfLength(q[0], q[1], q[2], q[3]));
  WriteRotation(q[0], q[1], q[2], q[3], scale, eerot);
}

}  // namespace qal

#endif  // QAL_KINEMATICS_SOLVE_POSE_ENCODING_H_
