#ifndef QAL_SOLVER_CLOSED_FORM_ANGLES_H_
#define QAL_SOLVER_CLOSED_FORM_ANGLES_H_

#include "lanes.h"

/// Angles and their sines, several side by side. Own functions, for two reasons: the C library
/// chooses between variants by processor, which differ in the last bit; and these have no branches,
/// so that two angles cost less than one.
namespace qal::closed_form {

constexpr double kPi = 3.14159265358979323846;

/// Sine and cosine of an angle; T is a number or lanes.
template <class T>
struct SinCos {
  T sine;
  T cosine;
};

/// Of the sum of two angles.
template <class A, class B>
QAL_INLINED constexpr auto operator*(const SinCos<A>& a, const SinCos<B>& b) {
  using T = decltype(a.sine * b.sine);
  return SinCos<T>{a.sine * b.cosine + a.cosine * b.sine, a.cosine * b.cosine - a.sine * b.sine};
}

/// Of the negative angle: the inverse rotation.
template <class T>
QAL_INLINED constexpr SinCos<T> Inverse(const SinCos<T>& a) {
  return {-a.sine, a.cosine};
}

/// Of the angle more by pi.
template <class T>
QAL_INLINED constexpr SinCos<T> Opposite(const SinCos<T>& a) {
  return {-a.sine, -a.cosine};
}

/// An angle in (-3 pi, 3 pi] taken into (-pi, pi].
template <class L>
QAL_INLINED L WrapAngle(const L& either) {
  L angle = either;
  angle -= Where(angle > Each<L>(kPi), Each<L>(2 * kPi));
  angle += Where(angle <= Each<L>(-kPi), Each<L>(2 * kPi));
  return angle;
}

/// `Atan2`, inlined.
template <class L>
QAL_INLINED L InlinedAtan2(const SinCos<L>& of) {
  constexpr double kTan22Degrees = 0.41421356237309503;
  // The tangent of the angle from the nearest axis, less 45 degrees where that is above 22.5.
  const L s = Abs(of.sine);
  const L c = Abs(of.cosine);
  const MaskOf<L> steep = s > c;
  const L low = Select(steep, c, s);
  const L high = Select(steep, s, c);
  const MaskOf<L> slant = low > kTan22Degrees * high;
  const L t = Select(slant, low - high, low) / Select(slant, low + high, high);
  // The odd polynomial nearest to the arc tangent up to 22.5 degrees (largest error 5e-18).
  const L z = t * t;
  const L z2 = z * z;
  const L z4 = z2 * z2;
  const L p0 = (-0.3333333333333333 + z * 0.1999999999999552) +
               z2 * (-0.14285714284666526 + z * 0.11111111015254975);
  const L p4 = (-0.09090904578067568 + z * 0.07692183189517367) +
               z2 * (-0.06664511428947303 + z * 0.058581487526600855);
  const L p8 = (-0.05085448899918921 + z * 0.03923163408550222) + z2 * -0.01917685746960811;
  // Back through the choices.
  const MaskOf<L> west = of.cosine < Each<L>(0);
  L angle = (t + t * z * (p0 + z4 * (p4 + z4 * p8))) + Where(slant, Each<L>(kPi / 4));
  angle = NegatedWhere(steep, angle) + Where(steep, Each<L>(kPi / 2));
  angle = NegatedWhere(west, angle) + Where(west, Each<L>(kPi));
  return NegatedWhere(of.sine < Each<L>(0), angle);
}

/// Beyond it the number of quarter turns no longer multiplies the parts of pi/2 without rounding
/// [rad].
constexpr double kLargestAngle = 1e5;

/// The angle [rad] of a sine and a cosine, in [-pi, pi], within 4e-16. The two may have a common
/// positive factor, but not both be 0.
template <class L>
QAL_INLINED L Atan2(const SinCos<L>& of) {
  return InlinedAtan2(of);
}
/// Of two lanes, which every processor has: code in one place, not in ten.
inline Lanes Atan2(const SinCos<Lanes>& of) { return InlinedAtan2(of); }

/// Sine and cosine of as many quarter turns as a number's last two bits say.
template <class L>
QAL_INLINED SinCos<L> QuarterTurns(const L& number) {
  const MaskOf<L> bits = BitsOf(number);
  const MaskOf<L> odd = LastBit(bits);
  const L one = WithSign(SecondLastBitAsSign(bits), Each<L>(1));
  return {Where(odd, one), Where(~odd, one)};
}

/// Sine and cosine of an angle [rad] up to the largest, within 2e-16.
template <class L>
QAL_INLINED SinCos<L> SinCosWithin(const L& angle) {
  // The nearest whole number of quarter turns: a double as large as the rounder has no binary
  // places left, and its last two bits are the number modulo 4.
  constexpr double kRounder = 0x1.8p52;
  const L shifted = angle * 0.6366197723675814 + kRounder;
  const L quarters = shifted - kRounder;
  // What is left; pi/2 comes in three parts, the first two of 33 bits.
  const L r = ((angle - quarters * 1.5707963267341256) - quarters * 6.077100506303966e-11) -
              quarters * 2.0222662487959506e-21;
  // The polynomials nearest to sine and cosine up to pi/4 (largest error 1e-17).
  const L z = r * r;
  const L z2 = z * z;
  const L s = (-0.16666666666666666 + z * 0.008333333333330948) +
              z2 * ((-0.00019841269836758538 + z * 2.755731610253375e-06) +
                    z2 * (-2.5051131841108444e-08 + z * 1.5918129014234338e-10));
  const L c = (0.041666666666666664 + z * -0.0013888888888887398) +
              z2 * ((2.4801587298765665e-05 + z * -2.75573172717181e-07) +
                    z2 * (2.0876146265966424e-09 + z * -1.1382632249960623e-11));
  const L most = 1.0 - 0.5 * z;
  const SinCos<L> rest = {r + r * z * s, most + (((1.0 - most) - 0.5 * z) + z2 * c)};
  return rest * QuarterTurns(shifted);
}

/// Whether the angle is one that `SinCosWithin` takes; NaN is not.
template <class L>
QAL_INLINED MaskOf<L> WithinLargest(const L& angle) {
  return Flag<L>(Abs(angle) <= Each<L>(kLargestAngle));
}

/// Sine and cosine of an angle [rad], within 2e-16; NaN for an angle that isn't finite. With one
/// beyond the largest both are the C library's.
inline SinCos<Lanes> SinCosOf(Lanes angle) {
  if (!Any(~WithinLargest(angle))) return SinCosWithin(angle);
  return {Lanes{std::sin(angle[0]), std::sin(angle[1])},
          Lanes{std::cos(angle[0]), std::cos(angle[1])}};
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_ANGLES_H_
