#ifndef QAL_TESTS_SUPPORT_SCRIPTED_SOLVER_H_
#define QAL_TESTS_SUPPORT_SCRIPTED_SOLVER_H_

#include <gtest/gtest.h>

#include <array>
#include <deque>
#include <functional>
#include <vector>

// A solver that does what a test says. An executable that links scripted_solver.cpp exports
// ikfast::ComputeIk and ikfast::ComputeFk itself, so the library binds to these and not to
// libik.so's.

using Joints = std::array<double, 6>;

/// A pose as it crosses the solver interface: position, then rotation matrix by rows.
using SolverPose = std::array<double, 12>;

/// Joints 1 to 3 are the coordinates, the tool never turns: positions read off the joints exactly.
SolverPose GantryForward(const Joints& joints);

/// What one inverse question gets. A solution may have any number of joints.
struct Answer {
  bool found;
  std::vector<std::vector<double>> solutions;
};
inline Answer Found(const std::vector<std::vector<double>>& solutions) { return {true, solutions}; }
inline Answer Nothing() { return {false, {}}; }
/// One solution: the coordinates, then zeros.
Answer GantryInverse(const SolverPose& target);

struct SolverScript {
  std::deque<Answer> answers;  ///< given first, one a question; then `inverse` answers
  std::function<Answer(const SolverPose&)> inverse = GantryInverse;
  std::function<SolverPose(const Joints&)> forward = GantryForward;
  std::vector<SolverPose> asked;  ///< every inverse question so far
};
extern SolverScript script;

/// Starts each test with a fresh script.
class ScriptedSolver : public testing::Test {
 protected:
  void SetUp() override { script = SolverScript(); }

  /// Lets the gantry answer so many questions, then not so many, then again.
  static void FindNothing(size_t answered, size_t unanswered) {
    script.asked.clear();
    script.inverse = [=](const SolverPose& target) {
      // This question is among those asked; size_t wraps for the first ones.
      const size_t place = script.asked.size() - 1 - answered;
      return place < unanswered ? Nothing() : GantryInverse(target);
    };
  }

  /// The gantry, but with joint 4 there.
  static void MoveJoint4(double angle) {
    script.inverse = [=](const SolverPose& target) {
      return Found({{target[0], target[1], target[2], angle, 0, 0}});
    };
  }
};

#endif  // QAL_TESTS_SUPPORT_SCRIPTED_SOLVER_H_
