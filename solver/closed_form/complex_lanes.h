#ifndef QAL_SOLVER_CLOSED_FORM_COMPLEX_LANES_H_
#define QAL_SOLVER_CLOSED_FORM_COMPLEX_LANES_H_

#include "geometry.h"

namespace qal::closed_form {

/// A complex number, or two side by side; T is double or Lanes. Vectors, rotations and chains of
/// them are as those of numbers: the scalar product has no conjugate in it.
template <class T>
struct Complex {
  T re, im;
};

using ComplexLanes = Complex<Lanes>;

template <class T>
constexpr Complex<T> operator+(const Complex<T>& a, const Complex<T>& b) {
  return {a.re + b.re, a.im + b.im};
}

template <class T>
constexpr Complex<T> operator+(const Complex<T>& a, double b) {
  return {a.re + b, a.im};
}

template <class T>
constexpr Complex<T> operator-(const Complex<T>& a, const Complex<T>& b) {
  return {a.re - b.re, a.im - b.im};
}

template <class T>
constexpr Complex<T> operator-(const Complex<T>& a) {
  return {-a.re, -a.im};
}

template <class T>
constexpr Complex<T> operator*(const Complex<T>& a, const Complex<T>& b) {
  return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

template <class T>
constexpr Complex<T> operator*(double factor, const Complex<T>& a) {
  return {factor * a.re, factor * a.im};
}

template <class T>
constexpr Complex<T> Conjugate(const Complex<T>& a) {
  return {a.re, -a.im};
}

/// The square of the absolute value.
template <class T>
constexpr T Norm(const Complex<T>& a) {
  return a.re * a.re + a.im * a.im;
}

template <class T>
constexpr Complex<T> Reciprocal(const Complex<T>& a) {
  const T per_norm = 1 / Norm(a);
  return {a.re * per_norm, -a.im * per_norm};
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_COMPLEX_LANES_H_
