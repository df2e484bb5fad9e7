#ifndef QAL_SOLVER_CLOSED_FORM_SPHERICAL_WRIST_H_
#define QAL_SOLVER_CLOSED_FORM_SPHERICAL_WRIST_H_

#include "body.h"
#include "wrist.h"

namespace qal::closed_form {

/// An arm whose axes 4, 5 and 6 meet in one point, the wrist's centre; axes 4 and 5, and 5 and 6,
/// at right angles.
///
/// The frame in which axis 4 is x and, at model angle 4 = 0, axis 5 is y, is turned from the arm's
/// frame by model angles 2 and 3 and `lean` about y, then by `skew` about z.
struct SphericalWristArm {
  Body body;
  Turn<double> lean;
  Turn<double> skew;  ///< {0, 1} for the usual arm, whose axis 4 is at right angles to axis 3
};

/// Whether another angle 1, of those that are open, may reach further: whether it moves the wrist's
/// centre by more than `reached` allows for anyway.
inline bool AngleMatters(const SphericalWristArm& arm, const Shoulder& shoulder) {
  return shoulder.open * std::fabs(arm.body.lateral) > 10 * shoulder.rounding;
}

/// Trial `trial` of model angle 1 where it is open: any is as good.
inline Lanes AngleToTry(const SphericalWristArm& /*arm*/, const Shoulder& shoulder, int trial) {
  return SpreadAngle(shoulder, trial);
}

/// All joints for what is left of a target: facing it, then with the back to it; elbow angle
/// positive, then negative; wrist angle 5 (of the model) positive, then negative.
inline Solutions SolveFrom(const SphericalWristArm& arm, const Shoulder& shoulder) {
  Elbow elbows[2];
  SolveElbow(arm.body, shoulder, shoulder.x, shoulder.z, elbows);
  Branch branches[4];
  for (int i = 0; i < 2; ++i) {
    const Elbow& elbow = elbows[i];
    Matrix<Lanes> hand = Rotated<1>(Back(elbow.pitch * arm.lean), shoulder.hand);
    if (arm.skew.sine != 0) hand = Rotated<2>(Back(arm.skew), hand);
    // With axes 4 and 6 in one line every angle 4 does, and 0 is taken.
    const Turn<Lanes> first = Wrist<0>::First(hand, Wrist<0>::Bend(hand), {kZero, kOne});
    const Wrist<0> wrist = Wrist<0>::Solve(hand, first);
    const Wrist<0> over = wrist.TurnedOver();
    const Mask reached = shoulder.reached & elbow.reached;
    branches[2 * i] = {
        {shoulder.angle, elbow.angle2, elbow.angle3, wrist.first, wrist.second, wrist.third},
        reached};
    branches[2 * i + 1] = {
        {shoulder.angle, elbow.angle2, elbow.angle3, over.first, over.second, over.third}, reached};
  }
  Solutions solutions;
  solutions.Add(arm.body, branches);
  return solutions;
}

/// The tool frame of six joints [rad].
inline Frame Forward(const SphericalWristArm& arm, const double* joints) {
  const Body& body = arm.body;
  Turn<double> turns[6];
  ModelTurns(body, joints, turns);
  Matrix<double> hand = Rotated<0>(turns[3], Rotated<1>(turns[4], Rotated<0>(turns[5], body.tool)));
  if (arm.skew.sine != 0) hand = Rotated<2>(arm.skew, hand);
  const Turn<double> pitch = turns[1] * turns[2];
  hand = Rotated<1>(pitch * arm.lean, hand);
  const double x = body.shoulder + body.upper_arm * turns[1].sine + body.forearm * pitch.sine;
  const double z = body.upper_arm * turns[1].cosine + body.forearm * pitch.cosine;
  return ToolFrame(body, turns[0], {{x, body.lateral, z}}, hand);
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_SPHERICAL_WRIST_H_
