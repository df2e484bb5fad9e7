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

/// From axis 4 to the wrist's centre, in the arm's frame.
template <class T>
struct WristOffset {
  T x, z;
  WristOffset(const ParallelAxesArm& arm, const SinCos<T>& pitch)
      : x(pitch.cosine * arm.wrist_offset_x + pitch.sine * arm.wrist_offset_z),
        z(pitch.cosine * arm.wrist_offset_z - pitch.sine * arm.wrist_offset_x) {}
};

/// How far axis 4 is from axis 2: the square of it is far2 - 2 * along. The pitch that is more by
/// an angle rotates (along, across) by it, from along towards across.
struct Axis4Reach {
  Lanes along, across, far2;
  Axis4Reach(const Shoulder& shoulder, const WristOffset<Lanes>& offset)
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
inline SinCos<Lanes> PitchWithinReach(const ParallelAxesArm& arm, const Shoulder& shoulder,
                                      Lanes bend, const SinCos<Lanes>& pitch) {
  const double outer = arm.body.upper_arm + arm.body.forearm;
  const double inner = arm.body.upper_arm - arm.body.forearm;
  const auto [along, across, far2] = Axis4Reach(shoulder, WristOffset<Lanes>(arm, pitch));
  const Lanes least = (far2 - outer * outer) / 2;
  const Lanes most = (far2 - inner * inner) / 2;
  const Mask within = ((along >= least) & (along <= most)) | ((-along >= least) & (-along <= most));
  if (!Any(~within)) return pitch;

  // The pitch, or the opposite one with the wrist flipped: whichever has less to go.
  const Lanes middle = (least + most) / 2;
  const Mask flip = NegatedWhere(middle < 0, along) < 0;
  const Lanes start_along = NegatedWhere(flip, along);
  const Lanes start_across = NegatedWhere(flip, across);
  Lanes end_along = start_along < least ? least : start_along;
  end_along = end_along > most ? most : end_along;
  const Lanes product2 = along * along + across * across;
  // On the rim the offset has to point straight at axis 2 or away from it: as far as rounding goes.
  const Lanes product = Sqrt(product2);
  const Lanes past = product + shoulder.rounding * outer;
  const Mask possible = (product2 > 0) & (end_along <= past) & (-end_along <= past);
  end_along = Clamped(end_along, product);
  const Lanes end_across = NegatedWhere(start_across < 0, Sqrt(product2 - end_along * end_along));
  const Lanes per_product2 = 1 / (possible ? product2 : kOne);
  const Lanes off_along = end_along - start_along;
  const Lanes off_across = end_across - start_across;
  const Lanes chord = Sqrt((off_along * off_along + off_across * off_across) * per_product2);
  const Mask allowed =
      ~within & possible & ((bend < kWristSingularSine) | (chord * bend <= kPitchNoise));
  const SinCos<Lanes> change = {(along * end_across - across * end_along) * per_product2,
                                (along * end_along + across * end_across) * per_product2};
  const SinCos<Lanes> moved = pitch * change;
  return {allowed ? NegatedWhere(flip, moved.sine) : pitch.sine,
          allowed ? NegatedWhere(flip, moved.cosine) : pitch.cosine};
}

/// Whether another angle 1, of those within the indeterminacy, may reach further: whether it
/// rotates the flange by more than `PitchWithinReach` makes up for.
inline bool IndeterminacyMatters(const ParallelAxesArm& /*arm*/, const Shoulder& shoulder) {
  return shoulder.indeterminacy > kPitchNoise;
}

/// Trial `trial` of model angle 1 where it is undetermined. What is within reach depends on the
/// pitch, and the pitch on angle 1: so besides the spread ones there are those with axis 6 as
/// parallel to axes 2 to 4 as it gets, where every pitch does, and with axis 4 on the rims of what
/// can be reached.
inline Lanes TrialRotation(const ParallelAxesArm& arm, const Shoulder& shoulder, int trial) {
  if (trial % 2 != 0) return EvenRotation(shoulder, trial);
  // In the arm's frame axis 6 is (-sin(5) cos(pitch), cos(5), sin(5) sin(pitch)). Its height is
  // given, so that the pitch says how far forward it has to point.
  const Vector<Lanes> axis6 = {
      {shoulder.flange[0][1], shoulder.flange[1][1], shoulder.flange[2][1]}};
  Lanes forward = kZero;
  if (trial > 0) {
    const double rim = arm.body.upper_arm + (trial % 4 == 0 ? arm.body.forearm : -arm.body.forearm);
    // From the offset at pitch zero to where it takes axis 4 to the rim, on either side.
    const auto [along, across, far2] =
        Axis4Reach(shoulder, WristOffset<Lanes>(arm, SinCos<Lanes>{kZero, kOne}));
    const Lanes product2 = along * along + across * across;
    const Lanes end_along = Clamped((far2 - rim * rim) / 2, Sqrt(product2));
    const Lanes end_across = Sqrt(product2 - end_along * end_along) * (trial > 4 ? -kOne : kOne);
    const Lanes sine = along * end_across - across * end_along;
    const Lanes cosine = along * end_along + across * end_across;
    // With sine and height both zero any will do.
    forward = -axis6[2] * cosine / (sine == 0 ? kOne : sine);
  }
  const Lanes level2 = axis6[0] * axis6[0] + axis6[1] * axis6[1];
  forward = Clamped(forward, Sqrt(level2));
  const Lanes lateral = NegatedWhere(axis6[1] < 0, Sqrt(level2 - forward * forward));
  const SinCos<Lanes> now = {axis6[1], axis6[0]};
  const SinCos<Lanes> then = {lateral, forward};
  return Atan2(now * Inverse(then));
}

/// All joints for what is left of a target: shoulder front, then rear; wrist angle 5 (of
/// the model) positive, then negative; elbow angle positive, then negative.
inline Solutions SolveFromShoulder(const ParallelAxesArm& arm, const Shoulder& shoulder) {
  const Matrix<Lanes>& flange = shoulder.flange;
  const Lanes bend = Wrist<1>::Bend(flange);
  // With axis 6 parallel to axes 2 to 4 every pitch does, and the one with model angle 6 at zero is
  // taken, or one within reach.
  const SinCos<Lanes> first = Wrist<1>::First(flange, bend, {flange[0][2], flange[2][2]});
  // The less the wrist is bent the more the pitch may be off, and with it the forearm's end.
  constexpr double kLeastBend = 1e-3;
  const Lanes slack = shoulder.slack / (bend > kLeastBend ? bend : kLeastBend * kOne);
  const SinCos<Lanes> pitch = PitchWithinReach(arm, shoulder, bend, first);
  const Wrist<1> wrist = Wrist<1>::Solve(flange, pitch);
  Branch branches[4];
  for (int flip = 0; flip < 2; ++flip) {
    const Wrist<1> w = flip ? wrist.Flipped() : wrist;
    const WristOffset<Lanes> offset(arm, flip ? Opposite(pitch) : pitch);
    Elbow elbows[2];
    SolveElbow(arm.body, shoulder, shoulder.x - offset.x, shoulder.z - offset.z, slack, elbows);
    for (int i = 0; i < 2; ++i) {
      const Elbow& elbow = elbows[i];
      const Lanes angle4 = WrapAngle(w.first - WrapAngle(elbow.angle2 + elbow.angle3));
      branches[2 * flip + i] = {
          {shoulder.angle, elbow.angle2, elbow.angle3, angle4, w.second, w.third},
          shoulder.reached & elbow.reached};
    }
  }
  Solutions solutions;
  solutions.Add(arm.body, branches);
  return solutions;
}

/// The tool frame of six joints [rad].
inline Frame Forward(const ParallelAxesArm& arm, const double* joints) {
  const Body& body = arm.body;
  SinCos<double> sincos[6];
  ModelSinCos(body, joints, sincos);
  const SinCos<double> forearm = sincos[1] * sincos[2];
  const SinCos<double> pitch = forearm * sincos[3];
  const WristOffset<double> offset(arm, pitch);
  const double x =
      body.shoulder + body.upper_arm * sincos[1].sine + body.forearm * forearm.sine + offset.x;
  const double z = body.upper_arm * sincos[1].cosine + body.forearm * forearm.cosine + offset.z;
  const Matrix<double> flange =
      Rotated<1>(pitch, Rotated<2>(sincos[4], Rotated<1>(sincos[5], body.tool)));
  return ToolFrame(body, sincos[0], {{x, body.lateral, z}}, flange);
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_PARALLEL_AXES_H_
