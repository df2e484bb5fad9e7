#include <algorithm>

#include "../pose/euler.h"
#include "forward.h"
#include "inverse.h"
#include "solution_choice.h"
#include "solver_query.h"

namespace qal {

namespace {

bool TellUnsolved(const Context& arm) {
  arm.Tell(Event::kUnsolved);
  return false;
}

bool WriteNearestOrTell(const Context& arm, const SolutionList& solutions, const double* reference,
                        double step_bound_rad, RoadPoint& point) {
  if (WriteNearest(solutions, reference, step_bound_rad, arm.numbers.range, point)) return true;
  arm.Tell(Event::kInadmissible);
  return false;
}

}  // namespace

// Forward kinematics that fails in the fallbacks has told so, and leaves the pose before it.

bool SolveWithin(const Context& arm, RoadPoint& point, const double* joints,
                 double step_bound_rad) {
  SolutionList solutions;
  if (!QuerySolver(arm, point, solutions)) {
    RoadPoint nudged = point;
    std::copy(joints, joints + kJointCount, nudged.jointpos);
    NudgeTowardsZero(nudged.jointpos);
    (void)ForwardPose(arm, nudged);
    if (!QuerySolver(arm, nudged, solutions)) return TellUnsolved(arm);
  }
  return WriteNearestOrTell(arm, solutions, joints, step_bound_rad, point);
}

bool SolveFrom(const Context& arm, const RoadPoint& current, RoadPoint& target,
               double step_bound_rad) {
  RoadPoint shifted = current;
  SolutionList solutions;
  if (!QuerySolver(arm, target, solutions)) {
    (void)ForwardPose(arm, shifted);
    double turn[3];
    EulerDifference(shifted.orientation, target.orientation, turn);
    // From the stored position of the current point, not the one just computed.
    const Pos way = target.position - current.position;
    NudgeTowardsZero(shifted.jointpos);
    (void)ForwardPose(arm, shifted);
    shifted.position = shifted.position + way;
    AddEuler(turn, shifted.orientation);
    if (!QuerySolver(arm, shifted, solutions)) return TellUnsolved(arm);
  }
  // The joints of the current point, nudged where the fallback ran.
  return WriteNearestOrTell(arm, solutions, shifted.jointpos, step_bound_rad, target);
}

bool SolveLineStep(const Context& arm, RoadPoint& point, const Pos& step, const double* joints,
                   double step_bound_rad) {
  SolutionList solutions;
  if (!QuerySolver(arm, point, solutions)) {
    // The point's own joints, not `joints`: the pose they have, one step on.
    RoadPoint shifted = point;
    (void)ForwardPose(arm, shifted);
    shifted.position = shifted.position + step;
    if (!QuerySolver(arm, shifted, solutions)) {
      NudgeTowardsZero(shifted.jointpos);
      (void)ForwardPose(arm, shifted);
      shifted.position = shifted.position + step;
      if (!QuerySolver(arm, shifted, solutions)) return TellUnsolved(arm);
    }
  }
  return WriteNearestOrTell(arm, solutions, joints, step_bound_rad, point);
}

}  // namespace qal
