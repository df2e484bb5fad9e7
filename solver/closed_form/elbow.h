#ifndef QAL_SOLVER_CLOSED_FORM_ELBOW_H_
#define QAL_SOLVER_CLOSED_FORM_ELBOW_H_

#include "shoulder.h"

namespace qal::closed_form {

/// One way to bend the elbow.
struct Elbow {
  Lanes angle2, angle3;  ///< model angles
  SinCos<Lanes> pitch;   ///< both of them together
  Mask reached;          ///< the end is within reach, and for the second elbow not on the rim
};

/// Model angles 2 and 3 that take the forearm's end `x`, `z` away from axis 2: model angle 3
/// positive, then negative. With the end on axis 2 itself every angle 2 does, and 0 is taken.
/// @param slack how far past the rim the end still counts as on it, besides rounding
inline void SolveElbow(const Body& body, const Shoulder& shoulder, Lanes x, Lanes z, Lanes slack,
                       Elbow (&elbows)[2]) {
  const double outer = body.upper_arm + body.forearm;
  const double inner = std::fabs(body.upper_arm - body.forearm);
  const Lanes distance2 = x * x + z * z;
  const Mask stretched = distance2 >= outer * (outer - 2 * shoulder.rounding);
  const Mask on_axis2 = distance2 <= shoulder.rounding * shoulder.rounding;
  const Mask folded = on_axis2 | (distance2 <= inner * (inner + 2 * shoulder.rounding));
  const Lanes past = shoulder.rounding + slack;
  const Mask reached =
      (distance2 <= outer * (outer + 2 * past)) & (distance2 >= inner * (inner - 2 * past));

  // Law of cosines, as 1 + cosine and 1 - cosine: neither loses its digits near its rim.
  const double per_product = 1 / (2 * body.upper_arm * body.forearm);
  Lanes plus = (distance2 - inner * inner) * per_product;
  Lanes minus = (outer * outer - distance2) * per_product;
  plus = stretched ? 2 * kOne : folded ? kZero : plus;
  minus = stretched ? kZero : folded ? 2 * kOne : minus;
  const SinCos<Lanes> bend = {Sqrt(plus * minus), plus - 1};
  // The end's direction less its direction with model angle 2 at zero.
  const Lanes along = body.upper_arm - body.forearm + body.forearm * plus;
  const Lanes across = body.forearm * bend.sine;
  const Lanes length = Sqrt(distance2 * (along * along + across * across));
  const Lanes per_length = 1 / (on_axis2 ? kOne : length);
  const SinCos<Lanes> up = {Where(~on_axis2, (x * along - z * across) * per_length),
                            on_axis2 ? kOne : (z * along + x * across) * per_length};
  const SinCos<Lanes> down = {Where(~on_axis2, (x * along + z * across) * per_length),
                              on_axis2 ? kOne : (z * along - x * across) * per_length};
  const Lanes angle3 = Atan2(bend);
  elbows[0] = {Atan2(up), angle3, up * bend, reached};
  elbows[1] = {Atan2(down), -angle3, down * Inverse(bend), reached & ~(stretched | folded)};
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_ELBOW_H_
