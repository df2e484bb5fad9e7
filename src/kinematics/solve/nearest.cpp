#include <algorithm>

#include "../pose/agreement.h"
#include "../pose/frame_moves.h"
#include "forward.h"
#include "inverse.h"
#include "solution_choice.h"
#include "solver_query.h"

namespace qal {

bool SolveNearest(const Context& arm, RoadPoint& point, const double* joints) {
  RoadPoint target = point;
  RoadPoint reference;
  std::copy(joints, joints + kJointCount, reference.jointpos);
  (void)ForwardPose(arm, reference);  // on failure the pose stays zero, and the comparison decides
  if (PosesAgree(target, reference, kSamePositionM, kSameOrientation)) return true;

  SolutionList solutions;
  if (!QuerySolver(arm, target, solutions)) {
    const RoadPoint difference = PoseDifference(target, reference);
    NudgeTowardsZero(reference.jointpos);
    (void)ForwardPose(arm, reference);  // on failure the pose before the nudge stands in
    target = PoseSum(reference, difference);
    if (!QuerySolver(arm, target, solutions)) {
      point = target;
      return false;
    }
  }
  return WriteNearest(solutions, joints, kNoStepBound, arm.numbers.range, point);
}

}  // namespace qal
