#ifndef QAL_TESTS_SUPPORT_SCRIPTED_SOLVER_H_
#define QAL_TESTS_SUPPORT_SCRIPTED_SOLVER_H_

#include <functional>

#include "waypoints.h"

// A solver that does what a test says. An executable that links scripted_solver.cpp exports
// ikfast::ComputeIk and ikfast::ComputeFk itself, so the library binds to these and not to
// libik.so's.

/// A pose as it crosses the solver interface: position, then rotation matrix by rows.
using SolverPose = std::array<double, 12>;

/// Joints 1 to 3 are the coordinates, the tool never turns: positions read off the joints exactly.
SolverPose GantryForward(const Joints& joints);
/// The query for this position of the gantry.
inline SolverPose GantryAt(const Pos& p) { return GantryForward({p.x, p.y, p.z}); }

/// What one inverse query gets. A solution may have any number of joints.
struct Answer {
  bool found;
  std::vector<std::vector<double>> solutions;
};
/// One solution: the coordinates, then `joint4` and zeros.
inline Answer GantryInverse(const SolverPose& target, double joint4 = 0.0) {
  return {true, {{target[0], target[1], target[2], joint4, 0, 0}}};
}

struct SolverScript {
  std::function<Answer(const SolverPose&)> inverse = [](auto& t) { return GantryInverse(t); };
  std::function<SolverPose(const Joints&)> forward = GantryForward;
  std::vector<SolverPose> queries;      ///< every inverse query so far
  size_t answered = 0, unanswered = 0;  ///< so many get an answer, then so many don't
};
extern SolverScript script;

/// Starts each test with a fresh script.
class ScriptedSolver : public testing::Test {
 protected:
  ScriptedSolver() { script = SolverScript(); }

  /// From now on so many queries get an answer, then so many don't, then all do.
  static void FindNothing(size_t answered, size_t unanswered) {
    script.queries.clear();
    script.answered = answered;
    script.unanswered = unanswered;
  }

  /// The gantry, but with joint 4 there.
  static void MoveJoint4(double angle) {
    script.inverse = [=](const SolverPose& target) { return GantryInverse(target, angle); };
  }

  /// No pose at all.
  static void FailForward() {
    script.forward = [](const Joints&) { return SolverPose{9, 9, 9, kNan}; };
  }
};

/// A move, and the vector or the array that its points go to.
class ScriptedMove : public ScriptedSolver {
 protected:
  /// An end whose pose is not that of its joints: it has to come out as it is.
  static RoadPoint End(const Joints& joints) { return Waypoint(Pos(7, 8, 9), joints); }

  RoadPoint start_ = Waypoint(Pos(4, 5, 6));
  RoadPoint end_;
  std::vector<RoadPoint> road_;
};

#endif  // QAL_TESTS_SUPPORT_SCRIPTED_SOLVER_H_
