#include <algorithm>

#include "../arm_constants.h"
#include "../diagnostics.h"
#include "../ikfunc.h"
#include "solution_choice.h"
#include "solver_query.h"

namespace {

bool ReportUnsolved() {
  qal::WriteError(qal::kUnsolvedError);
  return false;
}

bool WriteNearestOrReport(const qal::SolutionList& solutions, const double* reference,
                          double step_bound, RoadPoint& point) {
  if (qal::WriteNearest(solutions, reference, step_bound, point)) return true;
  qal::WriteError(qal::kInadmissibleError);
  return false;
}

}  // namespace

// A failed ArmFk in the fallbacks has written its message and leaves the pose before it standing.

bool Ikfunc::ArmJointIk(RoadPoint& cur_stat, double* joint, double max_joint_step_range) {
  qal::SolutionList solutions;
  if (!qal::AskSolver(cur_stat, solutions)) {
    RoadPoint temp_cur = cur_stat;
    std::copy(joint, joint + qal::kJointCount, temp_cur.jointpos);
    qal::NudgeTowardsZero(temp_cur.jointpos);
    (void)ArmFk(temp_cur);
    if (!qal::AskSolver(temp_cur, solutions)) return ReportUnsolved();
  }
  return WriteNearestOrReport(solutions, joint, max_joint_step_range, cur_stat);
}

bool Ikfunc::ArmJointIk(RoadPoint& cur_stat, RoadPoint& dis_stat, double max_joint_step_range) {
  RoadPoint temp_cur = cur_stat;
  qal::SolutionList solutions;
  if (!qal::AskSolver(dis_stat, solutions)) {
    (void)ArmFk(temp_cur);
    double EulerDis[3];
    QuaternionToEulerDis(temp_cur, dis_stat, EulerDis);
    // From the stored position of cur_stat, not the one just computed.
    const Pos temp_pointdis = dis_stat.position - cur_stat.position;
    qal::NudgeTowardsZero(temp_cur.jointpos);
    (void)ArmFk(temp_cur);
    temp_cur.position = temp_cur.position + temp_pointdis;
    QuaternionAddEuler(temp_cur, EulerDis);
    if (!qal::AskSolver(temp_cur, solutions)) return ReportUnsolved();
  }
  // The joints of cur_stat, nudged where the fallback ran.
  return WriteNearestOrReport(solutions, temp_cur.jointpos, max_joint_step_range, dis_stat);
}

bool Ikfunc::ArmLineMoveIk(RoadPoint& cur_stat, const Pos& dis, double* joint,
                           double max_joint_step_range) {
  qal::SolutionList solutions;
  if (!qal::AskSolver(cur_stat, solutions)) {
    // The point's own joints, not `joint`: the pose they have, one step on.
    RoadPoint tempPoint = cur_stat;
    (void)ArmFk(tempPoint);
    tempPoint.position = WorldMoveXYZ(tempPoint.position, dis);
    if (!qal::AskSolver(tempPoint, solutions)) {
      qal::NudgeTowardsZero(tempPoint.jointpos);
      (void)ArmFk(tempPoint);
      tempPoint.position = WorldMoveXYZ(tempPoint.position, dis);
      if (!qal::AskSolver(tempPoint, solutions)) return ReportUnsolved();
    }
  }
  return WriteNearestOrReport(solutions, joint, max_joint_step_range, cur_stat);
}
