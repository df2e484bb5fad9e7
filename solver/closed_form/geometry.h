#ifndef QAL_SOLVER_CLOSED_FORM_GEOMETRY_H_
#define QAL_SOLVER_CLOSED_FORM_GEOMETRY_H_

#include <cmath>

#include "angles.h"

/// Vectors and rotations, of numbers or of lanes. Written out element by element: the compiler then
/// keeps them in registers.
namespace qal::closed_form {

template <class T>
struct Vector {
  T element[3];
  QAL_INLINED constexpr const T& operator[](int i) const { return element[i]; }
};

template <class A, class B>
QAL_INLINED constexpr auto operator+(const Vector<A>& a, const Vector<B>& b) {
  using Sum = decltype(a[0] + b[0]);
  return Vector<Sum>{{a[0] + b[0], a[1] + b[1], a[2] + b[2]}};
}

template <class A, class B>
QAL_INLINED constexpr auto operator-(const Vector<A>& a, const Vector<B>& b) {
  using Difference = decltype(a[0] - b[0]);
  return Vector<Difference>{{a[0] - b[0], a[1] - b[1], a[2] - b[2]}};
}

template <class F, class T>
QAL_INLINED constexpr auto operator*(const F& factor, const Vector<T>& v) {
  using Product = decltype(factor * v[0]);
  return Vector<Product>{{factor * v[0], factor * v[1], factor * v[2]}};
}

/// The scalar product.
template <class A, class B>
QAL_INLINED constexpr auto Dot(const Vector<A>& a, const Vector<B>& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/// The vector product.
template <class T>
QAL_INLINED constexpr Vector<T> Cross(const Vector<T>& a, const Vector<T>& b) {
  return {{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]}};
}

/// A rotation matrix by rows. As a frame's rotation its columns are the frame's axes.
template <class T>
struct Matrix {
  Vector<T> row[3];
  QAL_INLINED constexpr const Vector<T>& operator[](int i) const { return row[i]; }
};

template <class T>
QAL_INLINED constexpr Matrix<T> Transposed(const Matrix<T>& m) {
  return {{{{m[0][0], m[1][0], m[2][0]}},
           {{m[0][1], m[1][1], m[2][1]}},
           {{m[0][2], m[1][2], m[2][2]}}}};
}

template <class A, class B>
QAL_INLINED constexpr auto operator*(const Matrix<A>& m, const Vector<B>& v) {
  using T = decltype(m[0][0] * v[0]);
  return Vector<T>{{Dot(m[0], v), Dot(m[1], v), Dot(m[2], v)}};
}

template <class A, class B>
QAL_INLINED constexpr auto operator*(const Matrix<A>& a, const Matrix<B>& b) {
  return Matrix<decltype(a[0][0] * b[0][0])>{{a[0][0] * b[0] + a[0][1] * b[1] + a[0][2] * b[2],
                                              a[1][0] * b[0] + a[1][1] * b[1] + a[1][2] * b[2],
                                              a[2][0] * b[0] + a[2][1] * b[1] + a[2][2] * b[2]}};
}

/// The rotation about a coordinate axis (0: x, 1: y, 2: z) times `m`.
template <int axis, class A, class B>
QAL_INLINED constexpr auto Rotated(const SinCos<A>& angle, const Matrix<B>& m) {
  using T = decltype(angle.sine * m[0][0]);
  constexpr int a = (axis + 1) % 3;
  constexpr int b = (axis + 2) % 3;
  Matrix<T> rotated;
  rotated.row[axis] = Vector<T>{{T{} + m[axis][0], T{} + m[axis][1], T{} + m[axis][2]}};
  rotated.row[a] = angle.cosine * m[a] - angle.sine * m[b];
  rotated.row[b] = angle.sine * m[a] + angle.cosine * m[b];
  return rotated;
}

/// How far from a rotation a target's matrix may be: far above what a normalised quaternion leaves
/// (1e-15), far below what a wrong matrix shows.
constexpr double kRotationTolerance = 1e-8;

/// Whether the columns have unit length and right angles, right-handed. NaN has not.
inline bool IsRotation(const Matrix<double>& matrix) {
  constexpr double kTolerance = kRotationTolerance;
  const Matrix<double> columns = Transposed(matrix);
  const Vector<double>& x = columns[0];
  const Vector<double>& y = columns[1];
  const Vector<double> off = Cross(x, y) - columns[2];
  return std::fabs(Dot(x, x) - 1) <= kTolerance && std::fabs(Dot(y, y) - 1) <= kTolerance &&
         std::fabs(Dot(x, y)) <= kTolerance && std::fabs(off[0]) <= kTolerance &&
         std::fabs(off[1]) <= kTolerance && std::fabs(off[2]) <= kTolerance;
}

/// A frame in another one. T is a number or lanes.
template <class T>
struct FrameOf {
  Matrix<T> rotation;
  Vector<T> position;
};
using Frame = FrameOf<double>;

/// `inner` as `outer` is seen from.
template <class A, class B>
QAL_INLINED auto operator*(const FrameOf<A>& outer, const FrameOf<B>& inner) {
  using T = decltype(outer.position[0] * inner.position[0]);
  return FrameOf<T>{outer.rotation * inner.rotation,
                    outer.position + outer.rotation * inner.position};
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_GEOMETRY_H_
