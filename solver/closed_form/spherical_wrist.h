#ifndef QAL_SOLVER_CLOSED_FORM_SPHERICAL_WRIST_H_
#define QAL_SOLVER_CLOSED_FORM_SPHERICAL_WRIST_H_

#include "elbow.h"
#include "solve.h"
#include "wrist.h"

namespace qal::closed_form {

/// An arm whose axes 4, 5 and 6 meet in one point, the wrist's centre; axes 4 and 5, and 5 and 6,
/// at right angles.
///
/// The frame in which axis 4 is x and, at model angle 4 = 0, axis 5 is y, is rotated from the arm's
/// frame by model angles 2 and 3 and `lean` about y, then by `skew` about z.
struct SphericalWristArm {
  Body body;
  SinCos<double> lean;
  SinCos<double> skew;  ///< {0, 1} for the usual arm, whose axis 4 is at right angles to axis 3
};

/// Whether another angle 1, of those within the indeterminacy, may reach further: whether it moves
/// the wrist's centre by more than `reached` allows for anyway.
inline bool IndeterminacyMatters(const SphericalWristArm& arm, const Shoulder& shoulder) {
  return shoulder.indeterminacy * std::fabs(arm.body.lateral) > 10 * shoulder.rounding;
}

/// Trial `trial` of model angle 1 where it is undetermined: any is as good.
inline Lanes TrialRotation(const SphericalWristArm& /*arm*/, const Shoulder& shoulder, int trial) {
  return EvenRotation(shoulder, trial);
}

/// All joints for what is left of a target: shoulder front, then rear; elbow angle
/// positive, then negative; wrist angle 5 (of the model) positive, then negative.
inline Solutions SolveFromShoulder(const SphericalWristArm& arm, const Shoulder& shoulder) {
  Elbow elbows[2];
  SolveElbow(arm.body, shoulder, shoulder.x, shoulder.z, shoulder.slack * kOne, elbows);
  Branch branches[4];
  for (int i = 0; i < 2; ++i) {
    const Elbow& elbow = elbows[i];
    Matrix<Lanes> flange = Rotated<1>(Inverse(elbow.pitch * arm.lean), shoulder.flange);
    if (arm.skew.sine != 0) flange = Rotated<2>(Inverse(arm.skew), flange);
    // With axes 4 and 6 in one line every angle 4 does, and 0 is taken.
    const SinCos<Lanes> first = Wrist<0>::First(flange, Wrist<0>::Bend(flange), {kZero, kOne});
    const Wrist<0> wrist = Wrist<0>::Solve(flange, first);
    const Wrist<0> flipped = wrist.Flipped();
    const Mask reached = shoulder.reached & elbow.reached;
    branches[2 * i] = {
        {shoulder.angle, elbow.angle2, elbow.angle3, wrist.first, wrist.second, wrist.third},
        reached};
    branches[2 * i + 1] = {
        {shoulder.angle, elbow.angle2, elbow.angle3, flipped.first, flipped.second, flipped.third},
        reached};
  }
  Solutions solutions;
  solutions.Add(arm.body, branches);
  return solutions;
}

/// The tool frame of six joints [rad].
inline Frame Forward(const SphericalWristArm& arm, const double* joints) {
  const Body& body = arm.body;
  SinCos<double> sincos[6];
  ModelSinCos(body, joints, sincos);
  Matrix<double> flange =
      Rotated<0>(sincos[3], Rotated<1>(sincos[4], Rotated<0>(sincos[5], body.tool)));
  if (arm.skew.sine != 0) flange = Rotated<2>(arm.skew, flange);
  const SinCos<double> pitch = sincos[1] * sincos[2];
  flange = Rotated<1>(pitch * arm.lean, flange);
  const double x = body.shoulder + body.upper_arm * sincos[1].sine + body.forearm * pitch.sine;
  const double z = body.upper_arm * sincos[1].cosine + body.forearm * pitch.cosine;
  return ToolFrame(body, sincos[0], {{x, body.lateral, z}}, flange);
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_SPHERICAL_WRIST_H_
