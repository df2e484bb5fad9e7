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

template <>
inline constexpr bool kBranchesOut<SphericalWristArm> = true;

/// Whether another angle 1, of those within the indeterminacy, may reach further: whether it moves
/// the wrist's centre by more than `reached` allows for anyway.
template <class L>
QAL_INLINED MaskOf<L> IndeterminacyMatters(const SphericalWristArm& arm, const L& indeterminacy,
                                           const L& rounding) {
  return indeterminacy * std::fabs(arm.body.lateral) > 10 * rounding;
}

/// Trial `trial` of model angle 1 where it is undetermined: any is as good.
inline Lanes TrialRotation(const SphericalWristArm& /*arm*/, const Shoulder<Lanes>& /*shoulder*/,
                           Lanes indeterminacy, int trial) {
  return EvenRotation(indeterminacy, trial);
}

template <class L>
QAL_INLINED ElbowTriangle<L> CommonTo(const SphericalWristArm& arm, const Shoulder<L>& shoulder) {
  return TriangleTo(arm.body, shoulder.rounding, shoulder.x, shoulder.z, shoulder.slack);
}

/// The solutions with one elbow: wrist angle 5 (of the model) positive, then negative.
/// @param elbow 1 for a positive elbow angle, -1 for a negative one
/// @param branches out: two
template <class L>
QAL_INLINED void SolveChoice(const SphericalWristArm& arm, const Shoulder<L>& shoulder,
                             const ElbowTriangle<L>& triangle, const L& elbow,
                             BranchAngles<L>* branches) {
  const auto [angle2, angle3, pitch, reached] = ElbowOf(triangle, elbow);
  Matrix<L> flange = Rotated<1>(Inverse(pitch * arm.lean), shoulder.flange);
  if (arm.skew.sine != 0) flange = Rotated<2>(Inverse(arm.skew), flange);
  // With axes 4 and 6 in one line every angle 4 does, and 0 is taken.
  using W = Wrist<L, 0>;
  const SinCos<L> first = W::First(flange, W::Bend(flange), {Each<L>(0), Each<L>(1)});
  const W wrist = W::Solve(flange, first);
  for (int flip = 0; flip < 2; ++flip) {
    const W w = wrist.FlippedWhere(Each<L>(flip) > Each<L>(0));
    branches[flip] = {{shoulder.angle, angle2, angle3, w.first, w.second, w.third},
                      shoulder.reached & reached};
  }
}

/// The tool frame from sines and cosines of the model angles.
template <class T>
QAL_INLINED FrameOf<T> ForwardOf(const SphericalWristArm& arm, const SinCos<T> (&sincos)[6]) {
  const Body& body = arm.body;
  Matrix<T> flange = Rotated<0>(sincos[3], Rotated<1>(sincos[4], Rotated<0>(sincos[5], body.tool)));
  if (arm.skew.sine != 0) flange = Rotated<2>(arm.skew, flange);
  const SinCos<T> pitch = sincos[1] * sincos[2];
  flange = Rotated<1>(pitch * arm.lean, flange);
  const T x = body.shoulder + body.upper_arm * sincos[1].sine + body.forearm * pitch.sine;
  const T z = body.upper_arm * sincos[1].cosine + body.forearm * pitch.cosine;
  return ToolFrame(body, sincos[0], Vector<T>{{x, T{} + body.lateral, z}}, flange);
}

/// The tool frame of six joints [rad].
inline Frame Forward(const SphericalWristArm& arm, const double* joints) {
  SinCos<double> sincos[6];
  ModelSinCos(arm.body, joints, sincos);
  return ForwardOf(arm, sincos);
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_SPHERICAL_WRIST_H_
