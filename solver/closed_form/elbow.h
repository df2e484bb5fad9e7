#ifndef QAL_SOLVER_CLOSED_FORM_ELBOW_H_
#define QAL_SOLVER_CLOSED_FORM_ELBOW_H_

#include "shoulder.h"

namespace qal::closed_form {

/// The triangle of upper arm, forearm and the way from axis 2 to the forearm's end.
template <class L>
struct ElbowTriangle {
  L x, z;              ///< the end from axis 2
  MaskOf<L> on_axis2;  ///< the end is there, and every angle 2 does
  MaskOf<L> reached;   ///< the end is within reach
  MaskOf<L> two;       ///< nor on the rim, where elbow up and down are one
  L angle3;            ///< the model angle, positive
  SinCos<L> bend;      ///< of it
  L along, across;     ///< the forearm's end with model angle 2 at zero
  L per_length;        ///< 1 by the square of the way's length
};

/// @param slack how far past the rim the end still counts as on it, besides rounding
template <class L>
QAL_INLINED ElbowTriangle<L> TriangleTo(const Body& body, const L& rounding, const L& x, const L& z,
                                        const L& slack) {
  const double outer = body.upper_arm + body.forearm;
  const double inner = std::fabs(body.upper_arm - body.forearm);
  const L distance2 = x * x + z * z;
  const MaskOf<L> stretched = Flag<L>(distance2 >= outer * (outer - 2 * rounding));
  const MaskOf<L> on_axis2 = Flag<L>(distance2 <= rounding * rounding);
  const MaskOf<L> folded = on_axis2 | Flag<L>(distance2 <= inner * (inner + 2 * rounding));
  const L past = rounding + slack;
  const MaskOf<L> reached = Flag<L>(distance2 <= outer * (outer + 2 * past)) &
                            Flag<L>(distance2 >= inner * (inner - 2 * past));

  // Law of cosines, as 1 + cosine and 1 - cosine: neither loses its digits near its rim.
  const double per_product = 1 / (2 * body.upper_arm * body.forearm);
  L plus = (distance2 - inner * inner) * per_product;
  L minus = (outer * outer - distance2) * per_product;
  plus = Select<L>(stretched, Each<L>(2), Where(~folded, plus));
  minus = Where<L>(~stretched, Select<L>(folded, Each<L>(2), minus));
  const SinCos<L> bend = {Sqrt<L>(plus * minus), plus - 1.0};
  const L along = body.upper_arm - body.forearm + body.forearm * plus;
  const L across = body.forearm * bend.sine;
  const L length = Sqrt<L>(distance2 * (along * along + across * across));
  return {x,           z,    on_axis2, reached, ~(stretched | folded),
          Atan2(bend), bend, along,    across,  1.0 / Select<L>(on_axis2, Each<L>(1), length)};
}

/// One way to bend the elbow.
template <class L>
struct Elbow {
  L angle2, angle3;   ///< model angles
  SinCos<L> pitch;    ///< both of them together
  MaskOf<L> reached;  ///< the end is within reach, and for the second elbow not on the rim
};

/// Model angles 2 and 3 that take the forearm's end to where the triangle has it. With the end on
/// axis 2 itself every angle 2 does, and 0 is taken.
/// @param side 1 for a positive model angle 3, -1 for a negative one
template <class L>
QAL_INLINED Elbow<L> ElbowOf(const ElbowTriangle<L>& triangle, const L& side) {
  const auto& [x, z, on_axis2, reached, two, angle3, bend, along, either_across, per_length] =
      triangle;
  const MaskOf<L> down = Flag<L>(side < Each<L>(0));
  const L across = NegatedWhere(down, either_across);
  // The end's direction less its direction with model angle 2 at zero.
  const SinCos<L> angle2 = {Where<L>(~on_axis2, (x * along - z * across) * per_length),
                            Select<L>(on_axis2, Each<L>(1), (z * along + x * across) * per_length)};
  const SinCos<L> bent = {NegatedWhere(down, bend.sine), bend.cosine};
  return {Atan2(angle2), NegatedWhere(down, angle3), angle2 * bent, reached & (~down | two)};
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_ELBOW_H_
