#ifndef QAL_SOLVER_CLOSED_FORM_SOLVE_H_
#define QAL_SOLVER_CLOSED_FORM_SOLVE_H_

#include <algorithm>
#include <type_traits>

#include "shoulder.h"
#include "solutions.h"
#include "widest.h"

namespace qal::closed_form {

/// Whether an arm's solutions are branches of its two shoulders. Then there are
///
///     CommonTo(arm, shoulder)                     what both choices of a shoulder have in common
///     SolveChoice(arm, shoulder, common, choice)  two branches of each; the choice is 1 or -1
///     IndeterminacyMatters(arm, indeterminacy, rounding)   whether other angles 1 may reach
///     further TrialRotation(arm, shoulder, indeterminacy, trial)   by how much more angle 1 is
///     tried
template <class Arm>
inline constexpr bool kBranchesOut = false;

/// Front and rear in turn, and for four lanes one choice after the other.
template <class L>
QAL_INLINED L ShoulderSides() {
  if constexpr (kLaneCount<L> == 2) {
    return L{1, -1};
  } else {
    alignas(L) constexpr double kSides[] = {1, -1, 1, -1};
    return Load<L>(kSides);
  }
}

/// The solutions from shoulders.
template <class Arm, class L>
QAL_INLINED void SolveFromShoulder(const Arm& arm, const Shoulder<L>& shoulder,
                                   Solutions& solutions) {
  const auto common = CommonTo(arm, shoulder);
  if constexpr (kLaneCount<L> == 2) {
    BranchAngles<L> branches[4];
    for (int k = 0; k < 2; ++k) {
      SolveChoice(arm, shoulder, common, Each<L>(1 - 2 * k), &branches[2 * k]);
    }
    solutions.Take(arm.body, branches);
  } else {
    BranchAngles<L> branches[2];
    alignas(L) constexpr double kChoices[] = {1, 1, -1, -1};
    const L choice = Load<L>(kChoices);
    SolveChoice(arm, shoulder, common, choice, branches);
    solutions.Take(arm.body, branches);
  }
}

/// The solutions with the first choice of angle 1: in two lanes shoulder front and rear, in four
/// those with both of their elbows or wrists.
struct FirstChoice {
  /// @param held       a pointer to an arm, or what is like one
  /// @param solutions  out
  /// @param unsettled  out: there are none, and other angles 1 may reach further
  template <int lanes, class Held>
  QAL_INLINED static void Run(const Held& held, const Frame& target, Solutions& solutions,
                              bool& unsettled) {
    using L = LanesOf<lanes>;
    const auto& arm = *held;
    FrameOf<L> frame;
    for (int i = 0; i < 3; ++i) {
      frame.position.element[i] = Each<L>(target.position[i]);
      for (int j = 0; j < 3; ++j) {
        frame.rotation.row[i].element[j] = Each<L>(target.rotation[i][j]);
      }
    }
    const Approach<L> to = ApproachOf(arm.body, frame);
    SolveFromShoulder(arm, ShoulderTo(arm.body, to, ShoulderSides<L>()), solutions);
    if (solutions.Count() > 0) return;
    const L indeterminacy = IndeterminacyOf(arm.body, to);
    unsettled = IndeterminacyMatters(arm, indeterminacy, to.rounding)[0] != 0;
  }
};

/// How many more angles 1 are tried where rounding leaves it undetermined.
constexpr int kTrials = 10;

/// Trial `trial` of those spread evenly over the indeterminacy: by how much angle 1 is more [rad].
inline Lanes EvenRotation(Lanes indeterminacy, int trial) {
  return indeterminacy * ((2 * trial + 1.0) / kTrials - 1);
}

/// Where the arm doesn't reach with the first choice of model angle 1, and rounding leaves it so
/// undetermined that it matters: the solutions with others.
template <class Arm>
[[gnu::noinline]] void TryRotations(const Arm& arm, const Frame& target, Solutions& solutions) {
  FrameOf<Lanes> frame;
  for (int i = 0; i < 3; ++i) {
    frame.position.element[i] = target.position[i] * kOne;
    for (int j = 0; j < 3; ++j) {
      frame.rotation.row[i].element[j] = target.rotation[i][j] * kOne;
    }
  }
  const Approach<Lanes> to = ApproachOf(arm.body, frame);
  const Shoulder<Lanes> shoulder = ShoulderTo(arm.body, to, ShoulderSides<Lanes>());
  const Lanes most = IndeterminacyOf(arm.body, to);
  for (int trial = 0; trial < kTrials && solutions.Count() == 0; ++trial) {
    const Lanes angle = Clamped<Lanes>(TrialRotation(arm, shoulder, most, trial), most);
    SolveFromShoulder(arm, RotatedBy(arm.body, shoulder, angle), solutions);
  }
}

/// All joints for the tool frame `target`.
/// @param held a pointer to an arm, or what is like one
template <class Held>
[[gnu::noinline]] Solutions SolveHeld(const Held& held, const Frame& target) {
  using Arm = std::decay_t<decltype(*held)>;
  if constexpr (kBranchesOut<Arm>) {
    // Rounding is judged by the size of the position: by an infinite one, all is within reach.
    const Vector<double>& p = target.position;
    Solutions solutions;
    if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2])) return solutions;
    bool unsettled = false;
    RunInLanes<FirstChoice, 4>(WidestLanes(), held, target, solutions, unsettled);
    if (unsettled) TryRotations(*held, target, solutions);
    return solutions;
  } else {
    return Solve(*held, target);
  }
}

/// The same.
template <class Arm, class = std::enable_if_t<kBranchesOut<Arm>>>
Solutions Solve(const Arm& arm, const Frame& target) {
  return SolveHeld(&arm, target);
}

/// The ways to reach `target` for an arm that is only near the family: where a slack lets a target
/// count as on the rim, with the joints of the rim.
template <class Arm, class = std::enable_if_t<kBranchesOut<Arm>>>
Solutions SeedsOf(const Arm& arm, const Frame& target) {
  Solutions seeds;
  bool unsettled = false;
  const Arm* const held = &arm;
  RunInLanes<FirstChoice, 4>(WidestLanes(), held, target, seeds, unsettled);
  return seeds;
}

/// All joints for a target as the solver interface has it: three coordinates, nine matrix elements
/// by rows. None for a matrix that is no rotation.
/// @param held a pointer to an arm, or what is like one
template <class Held>
Solutions SolveTarget(const Held& held, const double* eetrans, const double* eerot) {
  const double* r = eerot;
  const Frame target = {{{{{r[0], r[1], r[2]}}, {{r[3], r[4], r[5]}}, {{r[6], r[7], r[8]}}}},
                        {{eetrans[0], eetrans[1], eetrans[2]}}};
  if (!IsRotation(target.rotation)) return {};
  return SolveHeld(held, target);
}

/// The solutions as an array has them, which has room for `Solutions::kMost`.
/// @return how many
inline int WriteSolutions(const Solutions& found, double (*joints)[6]) {
  for (const Joints& solution : found) {
    std::copy(solution.begin(), solution.end(), *joints++);
  }
  return static_cast<int>(found.Count());
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
