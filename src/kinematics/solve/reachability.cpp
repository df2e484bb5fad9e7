#include <cmath>

#include "forward.h"
#include "inverse.h"
#include "solver_query.h"

namespace qal {

bool JointsHavePosition(const Context& arm, const RoadPoint& point) {
  // On each axis [m].
  constexpr double kAgreementM = 0.002;
  RoadPoint reached = point;
  (void)ForwardPose(arm, reached);  // on failure the copied position stands, and agrees
  const Pos difference = reached.position - point.position;
  for (const double axis : {difference.x, difference.y, difference.z}) {
    if (std::fabs(axis) > kAgreementM) return false;
  }
  return true;
}

bool MoveWithinReach(const Context& arm, RoadPoint& point) {
  SolutionList solutions;
  if (QuerySolver(arm, point, solutions)) return true;
  RoadPoint similar = point;  // so that a solver that throws leaves no half of it behind
  if (SolveWithin(arm, similar, similar.jointpos, kHoldStepRad)) {
    (void)ForwardPose(arm, similar);  // on failure the unreachable pose stands, and it is told
    point = similar;
    return true;
  }
  arm.Tell(Event::kUnreachable);
  return false;
}

}  // namespace qal
