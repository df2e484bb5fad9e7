#ifndef QAL_SOLVER_CLOSED_FORM_ANGLES_H_
#define QAL_SOLVER_CLOSED_FORM_ANGLES_H_

#include <cmath>
#include <cstdint>
#include <cstring>

/// Angles and their sines, two side by side. Own functions, for two reasons: the C library chooses
/// between variants by processor, which differ in the last bit; and these have no branches, so that
/// two angles cost less than one.
namespace qal::closed_form {

constexpr double kPi = 3.14159265358979323846;

/// Two numbers. Arithmetic, comparisons and choices (`?:`) work on each of them.
using Lanes = double __attribute__((vector_size(16)));
/// What a comparison of lanes gives: not 0 where it holds.
using Mask = decltype(Lanes() < Lanes());

constexpr Lanes kZero = {0, 0};
constexpr Lanes kOne = {1, 1};

inline bool Any(Mask mask) { return (mask[0] | mask[1]) != 0; }
/// `v` where the mask holds, else 0.
inline Lanes Where(Mask mask, Lanes v) { return Lanes(mask & Mask(v)); }
/// `v`, with the other sign where the mask holds.
inline Lanes NegatedWhere(Mask mask, Lanes v) { return Lanes((mask & Mask(-kZero)) ^ Mask(v)); }
inline Lanes Abs(Lanes v) { return Lanes(~Mask(-kZero) & Mask(v)); }
/// The root; 0 of what is negative.
inline Lanes Sqrt(Lanes v) {
  const Lanes positive = Where(v > 0, v);
  return Lanes{std::sqrt(positive[0]), std::sqrt(positive[1])};
}

/// `v`, but not further from zero than `most`.
inline Lanes Clamped(Lanes v, Lanes most) { return v > most ? most : v < -most ? -most : v; }

/// Sine and cosine of an angle; T is double or Lanes.
template <class T>
struct SinCos {
  T sine;
  T cosine;
};

/// Of the sum of two angles.
template <class A, class B>
constexpr auto operator*(const SinCos<A>& a, const SinCos<B>& b) {
  using T = decltype(a.sine * b.sine);
  return SinCos<T>{a.sine * b.cosine + a.cosine * b.sine, a.cosine * b.cosine - a.sine * b.sine};
}

/// Of the negative angle: the inverse rotation.
template <class T>
constexpr SinCos<T> Inverse(const SinCos<T>& a) {
  return {-a.sine, a.cosine};
}

/// Of the angle more by pi.
template <class T>
constexpr SinCos<T> Opposite(const SinCos<T>& a) {
  return {-a.sine, -a.cosine};
}

/// An angle in (-3 pi, 3 pi] taken into (-pi, pi].
inline Lanes WrapAngle(Lanes angle) {
  angle -= Where(angle > kPi, 2 * kPi * kOne);
  angle += Where(angle <= -kPi, 2 * kPi * kOne);
  return angle;
}

/// The angle [rad] of a sine and a cosine, in [-pi, pi], within 4e-16. The two may have a common
/// positive factor, but not both be 0.
inline Lanes Atan2(const SinCos<Lanes>& of) {
  constexpr double kTan22Degrees = 0.41421356237309503;
  // The tangent of the angle from the nearest axis, less 45 degrees where that is above 22.5.
  const Lanes s = Abs(of.sine);
  const Lanes c = Abs(of.cosine);
  const Mask steep = s > c;
  const Lanes low = steep ? c : s;
  const Lanes high = steep ? s : c;
  const Mask slant = low > kTan22Degrees * high;
  const Lanes t = (slant ? low - high : low) / (slant ? low + high : high);
  // The odd polynomial nearest to the arc tangent up to 22.5 degrees (largest error 5e-18).
  const Lanes z = t * t;
  const Lanes z2 = z * z;
  const Lanes z4 = z2 * z2;
  const Lanes p0 = (-0.3333333333333333 + z * 0.1999999999999552) +
                   z2 * (-0.14285714284666526 + z * 0.11111111015254975);
  const Lanes p4 = (-0.09090904578067568 + z * 0.07692183189517367) +
                   z2 * (-0.06664511428947303 + z * 0.058581487526600855);
  const Lanes p8 = (-0.05085448899918921 + z * 0.03923163408550222) + z2 * -0.01917685746960811;
  // Back through the choices.
  const Mask west = of.cosine < 0;
  Lanes angle = (t + t * z * (p0 + z4 * (p4 + z4 * p8))) + Where(slant, kPi / 4 * kOne);
  angle = NegatedWhere(steep, angle) + Where(steep, kPi / 2 * kOne);
  angle = NegatedWhere(west, angle) + Where(west, kPi * kOne);
  return NegatedWhere(of.sine < 0, angle);
}

/// Sine and cosine of an angle [rad], within 2e-16; NaN for an angle that isn't finite.
inline SinCos<Lanes> SinCosOf(Lanes angle) {
  // Beyond it the number of quarter turns no longer multiplies the parts of pi/2 without rounding.
  constexpr double kLargestRad = 1e5;
  if (!(std::fabs(angle[0]) <= kLargestRad && std::fabs(angle[1]) <= kLargestRad)) {
    return {Lanes{std::sin(angle[0]), std::sin(angle[1])},
            Lanes{std::cos(angle[0]), std::cos(angle[1])}};
  }
  // The nearest whole number of quarter turns: a double as large as the rounder has no binary
  // places left, and its last two bits are the number modulo 4.
  constexpr double kRounder = 0x1.8p52;
  const Lanes shifted = angle * 0.6366197723675814 + kRounder;
  const Lanes quarters = shifted - kRounder;
  std::uint64_t bits[2];
  std::memcpy(bits, &shifted, sizeof(bits));
  // What is left; pi/2 comes in three parts, the first two of 33 bits.
  const Lanes r = ((angle - quarters * 1.5707963267341256) - quarters * 6.077100506303966e-11) -
                  quarters * 2.0222662487959506e-21;
  // The polynomials nearest to sine and cosine up to pi/4 (largest error 1e-17).
  const Lanes z = r * r;
  const Lanes z2 = z * z;
  const Lanes s = (-0.16666666666666666 + z * 0.008333333333330948) +
                  z2 * ((-0.00019841269836758538 + z * 2.755731610253375e-06) +
                        z2 * (-2.5051131841108444e-08 + z * 1.5918129014234338e-10));
  const Lanes c = (0.041666666666666664 + z * -0.0013888888888887398) +
                  z2 * ((2.4801587298765665e-05 + z * -2.75573172717181e-07) +
                        z2 * (2.0876146265966424e-09 + z * -1.1382632249960623e-11));
  const Lanes most = 1 - 0.5 * z;
  const SinCos<Lanes> rest = {r + r * z * s, most + (((1 - most) - 0.5 * z) + z2 * c)};
  static constexpr SinCos<double> kQuarters[4] = {{0, 1}, {1, 0}, {0, -1}, {-1, 0}};
  const SinCos<double>& q0 = kQuarters[bits[0] & 3];
  const SinCos<double>& q1 = kQuarters[bits[1] & 3];
  return rest * SinCos<Lanes>{Lanes{q0.sine, q1.sine}, Lanes{q0.cosine, q1.cosine}};
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_ANGLES_H_
