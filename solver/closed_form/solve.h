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

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_SOLVE_H_
