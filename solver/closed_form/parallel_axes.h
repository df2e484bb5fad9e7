#ifndef QAL_SOLVER_CLOSED_FORM_PARALLEL_AXES_H_
#define QAL_SOLVER_CLOSED_FORM_PARALLEL_AXES_H_

#include "body.h"
#include "wrist.h"

namespace qal::closed_form {

/// An arm whose axes 2, 3 and 4 are parallel; axes 4 and 5, and 5 and 6, at right angles. The
/// wrist's centre is where axes 5 and 6 meet.
///
/// The frame in which axis 4 is y and axis 5 is z is turned from the arm's frame by model angles 2,
/// 3 and 4 about y, which together are the pitch. In it the wrist's centre is `palm_x` and `palm_z`
/// away from axis 4. At model angle 5 = 0 axis 6 is y as well.
struct ParallelAxesArm {
  Body body;
  double palm_x, palm_z;
};

/// From axis 4 to the wrist's centre, in the arm's frame.
template <class T>
struct Palm {
  T x, z;
  Palm(const ParallelAxesArm& arm, const Turn<T>& pitch)
      : x(pitch.cosine * arm.palm_x + pitch.sine * arm.palm_z),
        z(pitch.cosine * arm.palm_z - pitch.sine * arm.palm_x) {}
};

/// How far axis 4 is from axis 2: the square of it is far2 - 2 * along. The pitch that is more by
/// an angle turns (along, across) by it, from along towards across.
struct PalmReach {
  Lanes along, across, far2;
  PalmReach(const Shoulder& shoulder, const Palm<Lanes>& palm)
      : along(palm.x * shoulder.x + palm.z * shoulder.z),
        across(palm.x * shoulder.z - palm.z * shoulder.x),
        far2(shoulder.x * shoulder.x + shoulder.z * shoulder.z + palm.x * palm.x +
             palm.z * palm.z) {}
};

/// What another pitch may change in the hand's rotation: more than the target's rounding.
constexpr double kPitchNoise = 1e-12;

/// With axis 6 nearly parallel to axes 2 to 4, the pitch is lost in the rounding of the target, and
/// may lie out of reach while another that does as well does not. Then this is the nearest within
/// reach; else `pitch` itself.
inline Turn<Lanes> PitchWithinReach(const ParallelAxesArm& arm, const Shoulder& shoulder,
                                    Lanes bend, const Turn<Lanes>& pitch) {
  const double outer = arm.body.upper_arm + arm.body.forearm;
  const double inner = arm.body.upper_arm - arm.body.forearm;
  const auto [along, across, far2] = PalmReach(shoulder, Palm<Lanes>(arm, pitch));
  const Lanes least = (far2 - outer * outer) / 2;
  const Lanes most = (far2 - inner * inner) / 2;
  const Mask within = ((along >= least) & (along <= most)) | ((-along >= least) & (-along <= most));
  if (!Any(~within)) return pitch;

  // The pitch, or the opposite one with the wrist turned over: whichever has less to go.
  const Lanes middle = (least + most) / 2;
  const Mask over = NegatedWhere(middle < 0, along) < 0;
  const Lanes start_along = NegatedWhere(over, along);
  const Lanes start_across = NegatedWhere(over, across);
  Lanes end_along = start_along < least ? least : start_along;
  end_along = end_along > most ? most : end_along;
  const Lanes product2 = along * along + across * across;
  // On the rim the palm has to point straight at axis 2 or away from it: as far as rounding goes.
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
  const Turn<Lanes> change = {(along * end_across - across * end_along) * per_product2,
                              (along * end_along + across * end_across) * per_product2};
  const Turn<Lanes> moved = pitch * change;
  return {allowed ? NegatedWhere(over, moved.sine) : pitch.sine,
          allowed ? NegatedWhere(over, moved.cosine) : pitch.cosine};
}

/// Whether another angle 1, of those that are open, may reach further: whether it turns the hand by
/// more than `PitchWithinReach` makes up for.
inline bool AngleMatters(const ParallelAxesArm& /*arm*/, const Shoulder& shoulder) {
  return shoulder.open > kPitchNoise;
}

/// Trial `trial` of model angle 1 where it is open. What is within reach depends on the pitch, and
/// the pitch on angle 1: so besides the spread ones there are those with axis 6 as parallel to axes
/// 2 to 4 as it gets, where every pitch does, and with axis 4 on the rims of what can be reached.
inline Lanes AngleToTry(const ParallelAxesArm& arm, const Shoulder& shoulder, int trial) {
  if (trial % 2 != 0) return SpreadAngle(shoulder, trial);
  // In the arm's frame axis 6 is (-sin(5) cos(pitch), cos(5), sin(5) sin(pitch)). Its height is
  // given, so that the pitch says how far forward it has to point.
  const Vector<Lanes> axis6 = {{shoulder.hand[0][1], shoulder.hand[1][1], shoulder.hand[2][1]}};
  Lanes forward = kZero;
  if (trial > 0) {
    const double rim = arm.body.upper_arm + (trial % 4 == 0 ? arm.body.forearm : -arm.body.forearm);
    // From the palm at pitch zero to where it takes axis 4 to the rim, on either side.
    const auto [along, across, far2] =
        PalmReach(shoulder, Palm<Lanes>(arm, Turn<Lanes>{kZero, kOne}));
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
  const Turn<Lanes> now = {axis6[1], axis6[0]};
  const Turn<Lanes> then = {lateral, forward};
  return AngleOf(now * Back(then));
}

/// All joints for what is left of a target: facing it, then with the back to it; wrist angle 5 (of
/// the model) positive, then negative; elbow angle positive, then negative.
inline Solutions SolveFrom(const ParallelAxesArm& arm, const Shoulder& shoulder) {
  const Matrix<Lanes>& hand = shoulder.hand;
  const Lanes bend = Wrist<1>::Bend(hand);
  // With axis 6 parallel to axes 2 to 4 every pitch does, and the one with model angle 6 at zero is
  // taken, or one within reach.
  const Turn<Lanes> first = Wrist<1>::First(hand, bend, {hand[0][2], hand[2][2]});
  const Turn<Lanes> pitch = PitchWithinReach(arm, shoulder, bend, first);
  const Wrist<1> wrist = Wrist<1>::Solve(hand, pitch);
  Branch branches[4];
  for (int over = 0; over < 2; ++over) {
    const Wrist<1> w = over ? wrist.TurnedOver() : wrist;
    const Palm<Lanes> palm(arm, over ? Opposite(pitch) : pitch);
    Elbow elbows[2];
    SolveElbow(arm.body, shoulder, shoulder.x - palm.x, shoulder.z - palm.z, elbows);
    for (int i = 0; i < 2; ++i) {
      const Elbow& elbow = elbows[i];
      const Lanes angle4 = WrapAngle(w.first - WrapAngle(elbow.angle2 + elbow.angle3));
      branches[2 * over + i] = {
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
  Turn<double> turns[6];
  ModelTurns(body, joints, turns);
  const Turn<double> forearm = turns[1] * turns[2];
  const Turn<double> pitch = forearm * turns[3];
  const Palm<double> palm(arm, pitch);
  const double x =
      body.shoulder + body.upper_arm * turns[1].sine + body.forearm * forearm.sine + palm.x;
  const double z = body.upper_arm * turns[1].cosine + body.forearm * forearm.cosine + palm.z;
  const Matrix<double> hand =
      Rotated<1>(pitch, Rotated<2>(turns[4], Rotated<1>(turns[5], body.tool)));
  return ToolFrame(body, turns[0], {{x, body.lateral, z}}, hand);
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_PARALLEL_AXES_H_
