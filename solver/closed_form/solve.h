#ifndef QAL_SOLVER_CLOSED_FORM_SOLVE_H_
#define QAL_SOLVER_CLOSED_FORM_SOLVE_H_

#include "shoulder.h"
#include "solutions.h"

namespace qal::closed_form {

/// How many more angles 1 are tried where rounding leaves it undetermined.
constexpr int kTrials = 10;

/// Trial `trial` of those spread evenly over the indeterminacy: by how much angle 1 is more [rad].
inline Lanes EvenRotation(const Shoulder& shoulder, int trial) {
  return shoulder.indeterminacy * ((2 * trial + 1.0) / kTrials - 1) * kOne;
}

/// All joints for the tool frame `target`. Where the arm doesn't reach with the first choice of
/// model angle 1, and rounding leaves it so undetermined that it matters, others are tried.
template <class Arm>
Solutions Solve(const Arm& arm, const Frame& target) {
  // Rounding is judged by the size of the position: by an infinite one, everything is within reach.
  const Vector<double>& p = target.position;
  if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2])) return {};
  const Shoulder shoulder = SolveShoulder(arm.body, target);
  Solutions solutions = SolveFromShoulder(arm, shoulder);
  if (solutions.Count() > 0 || !IndeterminacyMatters(arm, shoulder)) return solutions;
  for (int trial = 0; trial < kTrials && solutions.Count() == 0; ++trial) {
    const Lanes angle = Clamped(TrialRotation(arm, shoulder, trial), shoulder.indeterminacy * kOne);
    solutions = SolveFromShoulder(arm, RotatedBy(arm.body, shoulder, angle));
  }
  return solutions;
}

/// The ways to reach `target` for an arm that is only near the family: where a slack lets a target
/// count as on the rim, with the joints of the rim.
template <class Arm>
Solutions SeedsOf(const Arm& arm, const Frame& target) {
  return SolveFromShoulder(arm, SolveShoulder(arm.body, target));
}

/// All joints for a target as the solver interface has it: three coordinates, nine matrix elements
/// by rows. None for a matrix that is no rotation.
template <class Arm>
Solutions SolveTarget(const Arm& arm, const double* eetrans, const double* eerot) {
  const double* r = eerot;
  const Frame target = {{{{{r[0], r[1], r[2]}}, {{r[3], r[4], r[5]}}, {{r[6], r[7], r[8]}}}},
                        {{eetrans[0], eetrans[1], eetrans[2]}}};
  if (!IsRotation(target.rotation)) return {};
  return Solve(arm, target);
}

/// The tool frame of six joints [rad] as the solver interface has it.
template <class Arm>
void WriteToolFrame(const Arm& arm, const double* joints, double* eetrans, double* eerot) {
  const Frame tool = Forward(arm, joints);
  for (int i = 0; i < 3; ++i) {
    eetrans[i] = tool.position[i];
    for (int j = 0; j < 3; ++j) eerot[3 * i + j] = tool.rotation[i][j];
  }
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_SOLVE_H_
