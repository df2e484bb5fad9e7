#include <algorithm>

#include "../arm_constants.h"
#include "../ikfunc.h"
#include "solution_choice.h"
#include "solver_query.h"

bool Ikfunc::ArmIk(RoadPoint& cur_stat, double* joint) {
  RoadPoint tempPoint = cur_stat;
  RoadPoint tempFK;
  std::copy(joint, joint + qal::kJointCount, tempFK.jointpos);
  (void)ArmFk(tempFK);  // on failure the pose stays zero, and the comparison decides
  if (PositionCompare(tempPoint, tempFK, qal::kSamePositionM, qal::kSameOrientation)) return true;

  qal::SolutionList solutions;
  if (!qal::AskSolver(tempPoint, solutions)) {
    RoadPoint tempDis = PointDis(tempPoint, tempFK);
    qal::NudgeTowardsZero(tempFK.jointpos);
    (void)ArmFk(tempFK);  // on failure the pose before the nudge stands in
    tempPoint = PointAdd(tempFK, tempDis);
    if (!qal::AskSolver(tempPoint, solutions)) {
      cur_stat = tempPoint;
      return false;
    }
  }
  return qal::WriteNearest(solutions, joint, qal::kNoStepBound, cur_stat);
}

bool Ikfunc::ArmIk(RoadPoint& cur_stat) {
  RoadPoint solved = cur_stat;
  return ArmIk(solved, solved.jointpos);
}
