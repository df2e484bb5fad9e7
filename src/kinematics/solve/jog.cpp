#include <cmath>

#include "../pose/frame_moves.h"
#include "forward.h"
#include "inverse.h"
#include "solution_choice.h"
#include "solver_query.h"

namespace qal {

bool SolveJog(const Context& arm, const RoadPoint& current, int coordinate, int move_mode,
              double step, RoadPoint& result) {
  const double step_bound_rad = std::fabs(step) * kJogStepFactor;
  RoadPoint target = JogTarget(current, coordinate, move_mode, step);
  SolutionList solutions;
  if (!QuerySolver(arm, target, solutions)) {
    RoadPoint nudged = current;
    NudgeTowardsZero(nudged.jointpos);
    (void)ForwardPose(arm, nudged);  // on failure the jog starts from the current pose again
    target = JogTarget(nudged, coordinate, move_mode, step);
    if (!QuerySolver(arm, target, solutions)) {
      arm.Tell(Event::kJogUnsolved);
      return false;
    }
  }
  // Against the current point's own joints, nudged or not.
  if (!WriteNearest(solutions, current.jointpos, step_bound_rad, arm.numbers.range, target)) {
    arm.Tell(Event::kJogInadmissible);
    return false;
  }
  result = target;
  return true;
}

}  // namespace qal
