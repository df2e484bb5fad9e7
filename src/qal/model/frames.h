#ifndef QAL_MODEL_FRAMES_H_
#define QAL_MODEL_FRAMES_H_

#include <cmath>

#include "../../../solver/closed_form/geometry.h"
#include "pose.h"

// Internal: the solving code's vectors and frames, and the way to them from the public ones, which
// is a copy.
namespace qal {

using closed_form::Frame;
using closed_form::kPi;
using Vector3 = closed_form::Vector<double>;
using Matrix3 = closed_form::Matrix<double>;

constexpr Frame kIdentity = {{{{{1, 0, 0}}, {{0, 1, 0}}, {{0, 0, 1}}}}, {{0, 0, 0}}};

inline Vector3 ToVector(const Vec3& v) { return {{v.x, v.y, v.z}}; }
inline Vec3 FromVector(const Vector3& v) { return {v[0], v[1], v[2]}; }

inline Frame ToFrame(const double* position, const double* rotation) {
  const double* r = rotation;
  return {{{{{r[0], r[1], r[2]}}, {{r[3], r[4], r[5]}}, {{r[6], r[7], r[8]}}}},
          {{position[0], position[1], position[2]}}};
}

inline Frame ToFrame(const Transform& transform) {
  const double position[] = {transform.position.x, transform.position.y, transform.position.z};
  return ToFrame(position, transform.rotation);
}

inline Transform FromFrame(const Frame& frame) {
  Transform transform;
  for (int i = 0; i < 9; ++i) transform.rotation[i] = frame.rotation[i / 3][i % 3];
  transform.position = FromVector(frame.position);
  return transform;
}

inline Frame Inverse(const Frame& frame) {
  const Matrix3 rotation = Transposed(frame.rotation);
  return {rotation, -1.0 * (rotation * frame.position)};
}

inline double Length(const Vector3& v) { return std::hypot(v[0], v[1], v[2]); }

/// Of two numbers; NaN is larger than any.
inline double Larger(double a, double b) { return b <= a ? a : b; }

/// The largest difference of two frames, in metres or as a matrix element.
inline double LargestDifference(const Frame& a, const Frame& b) {
  double largest = 0;
  for (int i = 0; i < 3; ++i) {
    largest = Larger(largest, std::fabs(a.position[i] - b.position[i]));
    for (int j = 0; j < 3; ++j) {
      largest = Larger(largest, std::fabs(a.rotation[i][j] - b.rotation[i][j]));
    }
  }
  return largest;
}

/// The vector a of a matrix's antisymmetric part [a]x: of a rotation by a small angle, the rotation
/// vector.
inline Vector3 AxialVector(const Matrix3& m) {
  return {{(m[2][1] - m[1][2]) / 2, (m[0][2] - m[2][0]) / 2, (m[1][0] - m[0][1]) / 2}};
}

/// The angle of the rotation from one orientation to the other, 0 to pi.
inline double AngleBetween(const Matrix3& a, const Matrix3& b) {
  const Matrix3 rotation = Transposed(a) * b;
  const double twice_cosine = rotation[0][0] + rotation[1][1] + rotation[2][2] - 1;
  return std::atan2(2 * Length(AxialVector(rotation)), twice_cosine);
}

/// The rotation by an angle [rad] about a unit axis.
Matrix3 RotationMatrix(const Vector3& axis, double angle);

}  // namespace qal

#endif  // QAL_MODEL_FRAMES_H_
