#ifndef QAL_SOLVER_CLOSED_FORM_PARALLEL_AXES_H_
#define QAL_SOLVER_CLOSED_FORM_PARALLEL_AXES_H_

#include "elbow.h"
#include "solve.h"
#include "wrist.h"

namespace qal::closed_form {

/// An arm whose axes 2, 3 and 4 are parallel; axes 4 and 5, and 5 and 6, at right angles. The
/// wrist's centre is where axes 5 and 6 meet.
///
/// The frame in which axis 4 is y and axis 5 is z is rotated from the arm's frame by model angles
/// 2, 3 and 4 about y, which together are the pitch. In it the wrist's centre is `wrist_offset_x`
/// and `wrist_offset_z` away from axis 4. At model angle 5 = 0 axis 6 is y as well.
struct ParallelAxesArm {
  Body body;
  double wrist_offset_x, wrist_offset_z;
};

template <>
inline constexpr bool kBranchesOut<ParallelAxesArm> = true;

/// From axis 4 to the wrist's centre, in the arm's frame.
template <class T>
struct WristOffset {
  T x, z;
  QAL_INLINED WristOffset(const ParallelAxesArm& arm, const SinCos<T>& pitch)
      : x(pitch.cosine * arm.wrist_offset_x + pitch.sine * arm.wrist_offset_z),
        z(pitch.cosine * arm.wrist_offset_z - pitch.sine * arm.wrist_offset_x) {}
};

/// How far axis 4 is from axis 2: the square of it is far2 - 2 * along. The pitch that is more by
/// an angle rotates (along, across) by it, from along towards across.
template <class L>
struct Axis4Reach {
  L along, across, far2;
  QAL_INLINED Axis4Reach(const Shoulder<L>& shoulder, const WristOffset<L>& offset)
      : along(offset.x * shoulder.x + offset.z * shoulder.z),
        across(offset.x * shoulder.z - offset.z * shoulder.x),
        far2(shoulder.x * shoulder.x + shoulder.z * shoulder.z + offset.x * offset.x +
             offset.z * offset.z) {}
};

/// What another pitch may change in the flange's rotation: more than the target's rounding.
constexpr double kPitchNoise = 1e-12;

/// With axis 6 nearly parallel to axes 2 to 4, the pitch is lost in the rounding of the target, and
/// may lie out of reach while another that does as well does not. Then this is the nearest within
/// reach; else `pitch` itself.
template <class L>
QAL_INLINED SinCos<L> PitchWithinReach(const ParallelAxesArm& arm, const Shoulder<L>& shoulder,
                                       const L& bend, const SinCos<L>& pitch) {
  using M = MaskOf<L>;
  const L zero = Each<L>(0);
  const double outer = arm.body.upper_arm + arm.body.forearm;
  const double inner = arm.body.upper_arm - arm.body.forearm;
  const auto [along, across, far2] = Axis4Reach<L>(shoulder, WristOffset<L>(arm, pitch));
  const L least = (far2 - outer * outer) / 2.0;
  const L most = (far2 - inner * inner) / 2.0;
  const M within = (Flag<L>(along >= least) & Flag<L>(along <= most)) |
                   (Flag<L>(-along >= least) & Flag<L>(-along <= most));
  if (!Any(~within)) return pitch;

  // The pitch, or the opposite one with the wrist flipped: whichever has less to go.
  const L middle = (least + most) / 2.0;
  const M flip = NegatedWhere<L>(middle < zero, along) < zero;
  const L start_along = NegatedWhere<L>(flip, along);
  const L start_across = NegatedWhere<L>(flip, across);
  L end_along = Select<L>(start_along < least, least, start_along);
  end_along = Select<L>(end_along > most, most, end_along);
  const L product2 = along * along + across * across;
  // On the rim the offset has to point straight at axis 2 or away from it: as far as rounding goes.
  const L product = Sqrt(product2);
  const L past = product + shoulder.rounding * outer;
  const M possible =
      Flag<L>(product2 > zero) & Flag<L>(end_along <= past) & Flag<L>(-end_along <= past);
  end_along = Clamped<L>(end_along, product);
  const L end_across =
      NegatedWhere<L>(start_across < zero, Sqrt<L>(product2 - end_along * end_along));
  const L per_product2 = 1.0 / Select<L>(possible, product2, Each<L>(1));
  const L off_along = end_along - start_along;
  const L off_across = end_across - start_across;
  const L chord = Sqrt<L>((off_along * off_along + off_across * off_across) * per_product2);
  const M allowed =
      ~within & possible &
      (Flag<L>(bend < Each<L>(kWristSingularSine)) | Flag<L>(chord * bend <= Each<L>(kPitchNoise)));
  const SinCos<L> change = {(along * end_across - across * end_along) * per_product2,
                            (along * end_along + across * end_across) * per_product2};
  const SinCos<L> moved = pitch * change;
  return {Select<L>(allowed, NegatedWhere<L>(flip, moved.sine), pitch.sine),
          Select<L>(allowed, NegatedWhere<L>(flip, moved.cosine), pitch.cosine)};
}

/// Whether another angle 1, of those within the indeterminacy, may reach further: whether it
/// rotates the flange by more than `PitchWithinReach` makes up for.
template <class L>
QAL_INLINED MaskOf<L> IndeterminacyMatters(const ParallelAxesArm& /*arm*/, const L& indeterminacy,
                                           const L& /*rounding*/) {
  return indeterminacy > Each<L>(kPitchNoise);
}

/// Trial `trial` of model angle 1 where it is undetermined. What is within reach depends on the
/// pitch, and the pitch on angle 1: so besides the spread ones there are those with axis 6 as
/// parallel to axes 2 to 4 as it gets, where every pitch does, and with axis 4 on the rims of what
/// can be reached.
inline Lanes TrialRotation(const ParallelAxesArm& arm, const Shoulder<Lanes>& shoulder,
                           Lanes indeterminacy, int trial) {
  if (trial % 2 != 0) return EvenRotation(indeterminacy, trial);
  // In the arm's frame axis 6 is (-sin(5) cos(pitch), cos(5), sin(5) sin(pitch)). Its height is
  // given, so that the pitch says how far forward it has to point.
  const Vector<Lanes> axis6 = {
      {shoulder.flange[0][1], shoulder.flange[1][1], shoulder.flange[2][1]}};
  Lanes forward = kZero;
  if (trial > 0) {
    const double rim = arm.body.upper_arm + (trial % 4 == 0 ? arm.body.forearm : -arm.body.forearm);
    // From the offset at pitch zero to where it takes axis 4 to the rim, on either side.
    const auto [along, across, far2] =
        Axis4Reach<Lanes>(shoulder, WristOffset<Lanes>(arm, SinCos<Lanes>{kZero, kOne}));
    const Lanes product2 = along * along + across * across;
    const Lanes end_along = Clamped<Lanes>((far2 - rim * rim) / 2, Sqrt(product2));
    const Lanes end_across =
        Sqrt<Lanes>(product2 - end_along * end_along) * (trial > 4 ? -kOne : kOne);
    const Lanes sine = along * end_across - across * end_along;
    const Lanes cosine = along * end_along + across * end_across;
    // With sine and height both zero any will do.
    forward = -axis6[2] * cosine / (sine == 0 ? kOne : sine);
  }
  const Lanes level2 = axis6[0] * axis6[0] + axis6[1] * axis6[1];
  forward = Clamped<Lanes>(forward, Sqrt(level2));
  const Lanes lateral = NegatedWhere<Lanes>(axis6[1] < 0, Sqrt<Lanes>(level2 - forward * forward));
  const SinCos<Lanes> now = {axis6[1], axis6[0]};
  const SinCos<Lanes> then = {lateral, forward};
  return Atan2(now * Inverse(then));
}

/// What both ways to flip the wrist have in common.
template <class L>
struct ParallelWrist {
  SinCos<L> pitch;
  Wrist<L, 1> wrist;  ///< with wrist angle 5 (of the model) positive
  L slack;
};

template <class L>
QAL_INLINED ParallelWrist<L> CommonTo(const ParallelAxesArm& arm, const Shoulder<L>& shoulder) {
  using W = Wrist<L, 1>;
  const Matrix<L>& flange = shoulder.flange;
  const L bend = W::Bend(flange);
  // With axis 6 parallel to axes 2 to 4 every pitch does, and the one with model angle 6 at zero is
  // taken, or one within reach.
  const SinCos<L> first = W::First(flange, bend, {flange[0][2], flange[2][2]});
  const SinCos<L> pitch = PitchWithinReach(arm, shoulder, bend, first);
  // The less the wrist is bent the more the pitch may be off, and with it the forearm's end.
  constexpr double kLeastBend = 1e-3;
  const L most = Select<L>(bend > Each<L>(kLeastBend), bend, Each<L>(kLeastBend));
  return {pitch, W::Solve(flange, pitch), shoulder.slack / most};
}

/// The solutions with one way of the wrist: elbow angle positive, then negative.
/// @param flip 1 for a positive wrist angle 5 (of the model), -1 for a negative one
/// @param branches out: two
template <class L>
QAL_INLINED void SolveChoice(const ParallelAxesArm& arm, const Shoulder<L>& shoulder,
                             const ParallelWrist<L>& common, const L& flip,
                             BranchAngles<L>* branches) {
  const MaskOf<L> flipped = Flag<L>(flip < Each<L>(0));
  const Wrist<L, 1> wrist = common.wrist.FlippedWhere(flipped);
  const SinCos<L> pitch = {NegatedWhere(flipped, common.pitch.sine),
                           NegatedWhere(flipped, common.pitch.cosine)};
  const WristOffset<L> offset(arm, pitch);
  const ElbowTriangle<L> triangle = TriangleTo<L>(
      arm.body, shoulder.rounding, shoulder.x - offset.x, shoulder.z - offset.z, common.slack);
  for (int i = 0; i < 2; ++i) {
    const Elbow<L> elbow = ElbowOf(triangle, Each<L>(i == 0 ? 1 : -1));
    const L angle4 = WrapAngle<L>(wrist.first - WrapAngle<L>(elbow.angle2 + elbow.angle3));
    branches[i] = {{shoulder.angle, elbow.angle2, elbow.angle3, angle4, wrist.second, wrist.third},
                   shoulder.reached & elbow.reached};
  }
}

/// The tool frame from sines and cosines of the model angles.
template <class T>
QAL_INLINED FrameOf<T> ForwardOf(const ParallelAxesArm& arm, const SinCos<T> (&sincos)[6]) {
  const Body& body = arm.body;
  const SinCos<T> forearm = sincos[1] * sincos[2];
  const SinCos<T> pitch = forearm * sincos[3];
  const WristOffset<T> offset(arm, pitch);
  const T x =
      body.shoulder + body.upper_arm * sincos[1].sine + body.forearm * forearm.sine + offset.x;
  const T z = body.upper_arm * sincos[1].cosine + body.forearm * forearm.cosine + offset.z;
  const Matrix<T> flange =
      Rotated<1>(pitch, Rotated<2>(sincos[4], Rotated<1>(sincos[5], body.tool)));
  return ToolFrame(body, sincos[0], Vector<T>{{x, T{} + body.lateral, z}}, flange);
}

/// The tool frame of six joints [rad].
inline Frame Forward(const ParallelAxesArm& arm, const double* joints) {
  SinCos<double> sincos[6];
  ModelSinCos(arm.body, joints, sincos);
  return ForwardOf(arm, sincos);
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_PARALLEL_AXES_H_
