#include <cmath>

#include "../arm_constants.h"
#include "../diagnostics.h"
#include "../ikfunc.h"
#include "solution_choice.h"
#include "solver_query.h"

bool Ikfunc::ArmIk(RoadPoint& cur_stat, int coordinate, int move_mode, double step,
                   RoadPoint& result) {
  const double max_joint_step = std::fabs(step) * qal::kJogStepFactor;
  RoadPoint tempPoint = EndMove(cur_stat, coordinate, move_mode, step);
  qal::SolutionList solutions;
  if (!qal::AskSolver(tempPoint, solutions)) {
    RoadPoint temp_cur = cur_stat;
    qal::NudgeTowardsZero(temp_cur.jointpos);
    (void)ArmFk(temp_cur);  // on failure the jog starts from cur_stat's pose again
    tempPoint = EndMove(temp_cur, coordinate, move_mode, step);
    if (!qal::AskSolver(tempPoint, solutions)) {
      qal::WriteError(qal::kJogUnsolvedError);
      return false;
    }
  }
  // Against cur_stat's own joints, nudged or not.
  if (!qal::WriteNearest(solutions, cur_stat.jointpos, max_joint_step, tempPoint)) {
    qal::WriteError(qal::kJogInadmissibleError);
    return false;
  }
  result = tempPoint;
  return true;
}
