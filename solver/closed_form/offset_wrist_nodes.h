#ifndef QAL_SOLVER_CLOSED_FORM_OFFSET_WRIST_NODES_H_
#define QAL_SOLVER_CLOSED_FORM_OFFSET_WRIST_NODES_H_

#include "offset_wrist_ways.h"

namespace qal::closed_form {

/// What the rest of a solution follows from, by model angles.
struct Candidate {
  SinCos<double> angle1;
  SinCos<double> pitch;  ///< angles 2 and 3 together
  SinCos<double> angle6;
};

/// A place of a way. There the wrist's centre is given, with it angle 1, and the forearm's pitch up
/// to its sign, as axis 4 is at right angles to axes 3 and 5. With one sign the square of the upper
/// arm would have to be longer by even - odd than it is, with the other one by even + odd.
struct Node {
  double at;  ///< the way's parameter
  Candidate candidate;
  double even, odd;
  double even_slope, odd_slope;  ///< per parameter, as is `rate`
  /// How fast angles 1 and 6 and the pitch change at the most hereabouts: high near where they are
  /// singular, with the centre on axis 1 or axis 5 parallel to axis 3, also where they don't yet.
  double rate;

  Jet Excess(int sign) const {
    return sign == 0 ? Jet{even - odd, even_slope - odd_slope}
                     : Jet{even + odd, even_slope + odd_slope};
  }
  Candidate With(int sign) const {
    return {candidate.angle1, sign == 0 ? candidate.pitch : Opposite(candidate.pitch),
            candidate.angle6};
  }
};

/// Nodes of a way, two at once.
struct Nodes {
  Lanes at;
  SinCos<Lanes> angle1, pitch, angle6;
  Lanes even, odd, even_slope, odd_slope, rate;

  Node operator[](int i) const {
    return {at[i],
            {{angle1.sine[i], angle1.cosine[i]},
             {pitch.sine[i], pitch.cosine[i]},
             {angle6.sine[i], angle6.cosine[i]}},
            even[i],
            odd[i],
            even_slope[i],
            odd_slope[i],
            rate[i]};
  }
};

/// Below it the square of a sine, or of a length by the forearm's, is rounding.
constexpr double kNothing2 = 1e-30;

/// Where angle 1 has to be for the wrist's centre `centre`, and how far forward of axis 1 that is
/// then; `side` is 1 for shoulder front, -1 for rear. With the centre on axis 1 every angle does,
/// and 0 or pi is taken.
struct ArmPlane {
  SinCos<Lanes> angle1;
  Lanes forward;

  ArmPlane(const Body& body, const Vector<Lanes>& centre, Lanes side) {
    const double lateral = body.lateral;
    const double least2 = kNothing2 * (body.forearm * body.forearm);
    const Lanes radius2 = centre[0] * centre[0] + centre[1] * centre[1];
    const Lanes forward2 = radius2 - lateral * lateral;
    // Never 0: slopes are divided by it.
    forward = side * Sqrt(forward2 > least2 ? forward2 : least2 * kOne);
    const Mask on_axis1 = radius2 <= least2;
    const Lanes per_length =
        1 / Sqrt(on_axis1 ? kOne : radius2 * (forward * forward + lateral * lateral));
    angle1 = {Where(~on_axis1, (centre[1] * forward - centre[0] * lateral) * per_length),
              on_axis1 ? side : (centre[0] * forward + centre[1] * lateral) * per_length};
  }
};

/// The nodes at angles 6 that grow by `speed` per parameter.
inline Nodes NodesAt(const OffsetWristArm& arm, const WristCircle& circle, Lanes at,
                     const SinCos<Lanes>& angle6, Lanes speed, Lanes side) {
  const Body& body = arm.body;
  const Vector<Lanes> centre = circle.Centre(angle6);
  const auto [angle1, forward] = ArmPlane(body, centre, side);
  const Vector<Lanes> velocity = SeenFrom(angle1, circle.Velocity(angle6));
  const Vector<Lanes> axis5 = SeenFrom(angle1, circle.Axis5(angle6));
  const Vector<Lanes> across = SeenFrom(angle1, circle.Across(angle6));
  const Lanes turning = speed / forward;
  const Lanes angle1_slope = velocity[1] * turning;

  // Axis 4 has to be at right angles to axis 5, in the arm's plane.
  const Lanes level2 = axis5[0] * axis5[0] + axis5[2] * axis5[2];
  const Mask level = level2 > kNothing2;
  const Lanes per_level2 = 1 / (level ? level2 : kNothing2 * kOne);
  const Lanes per_level = Sqrt(per_level2);
  const SinCos<Lanes> axis4 = {Where(level, axis5[0] * per_level),
                               level ? axis5[2] * per_level : kOne};
  const SinCos<Lanes> pitch = axis4 * Inverse(arm.lean);
  const Lanes axis5_x_slope = axis5[1] * angle1_slope - across[0] * speed;
  const Lanes axis5_z_slope = -across[2] * speed;
  const Lanes pitch_slope = (axis5[2] * axis5_x_slope - axis5[0] * axis5_z_slope) * per_level2;

  const Lanes x = forward - body.shoulder;
  const Lanes z = centre[2];
  const Lanes x_slope = velocity[0] * speed + body.lateral * angle1_slope;
  const Lanes z_slope = velocity[2] * speed;
  const double links2 = body.forearm * body.forearm - body.upper_arm * body.upper_arm;
  const Lanes along = x * pitch.sine + z * pitch.cosine;
  const Lanes along_slope = x_slope * pitch.sine + z_slope * pitch.cosine +
                            pitch_slope * (x * pitch.cosine - z * pitch.sine);
  const Lanes moved = Sqrt(velocity[0] * velocity[0] + velocity[1] * velocity[1]);
  const Lanes tilted = Sqrt(axis5_x_slope * axis5_x_slope + axis5_z_slope * axis5_z_slope);
  return {at,
          angle1,
          pitch,
          angle6,
          x * x + z * z + links2,
          2 * body.forearm * along,
          2 * (x * x_slope + z * z_slope),
          2 * body.forearm * along_slope,
          Abs(speed) + moved * Abs(turning) + tilted * per_level};
}

/// The nodes at the parameters `at` of a way. Where it doesn't go round, shoulder front or rear
/// follows from them.
inline Nodes NodesAt(const OffsetWristArm& arm, const WristCircle& circle, const Way& way, Lanes at,
                     Lanes side) {
  const SinCos<Lanes> parameter = SinCosOf(at);
  if (way.round) return NodesAt(arm, circle, at, parameter, kOne, side);
  return NodesAt(arm, circle, at, SinCosOf(way.middle - way.width * parameter.cosine),
                 way.width * parameter.sine, NegatedWhere(parameter.sine < 0, kOne));
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_OFFSET_WRIST_NODES_H_
