#include "../ikfunc.h"
#include "../trajectory/joint_move.h"
#include "../trajectory/straight_line.h"
#include "loaded_arm.h"

using qal::kLoadedArm;
using qal::kReferenceNumbers;

int Ikfunc::CountLineSize(RoadPoint s_point, RoadPoint e_point, int speed) {
  return qal::CountFixedLine(kLoadedArm, s_point, e_point, speed);
}

bool Ikfunc::CountLineToBuffer(RoadPoint s_point, RoadPoint e_point, int step_count,
                               RoadPoint* point_array, int speed) {
  return qal::FillFixedLine(kLoadedArm, s_point, e_point, step_count, point_array, speed);
}

int Ikfunc::CountLineToBuffer(RoadPoint s_point, RoadPoint e_point, double precis,
                              RoadPoint* point_array) {
  return qal::FillFineLine(kLoadedArm, s_point, e_point, precis, point_array);
}

bool Ikfunc::CountLineToBuffer(RoadPoint s_point, RoadPoint e_point,
                               std::vector<RoadPoint>* point_road, int speed) {
  return qal::PlanRampedLine(kLoadedArm, s_point, e_point, *point_road, speed);
}

int Ikfunc::CountSRunCurvelLineToBuffer(RoadPoint s_point, RoadPoint e_point,
                                        std::vector<RoadPoint>* point_road, float /*max_v*/,
                                        float max_acc, float max_jerk, int max_joint) {
  return qal::PlanSCurveLine(kLoadedArm, s_point, e_point, *point_road, max_acc, max_jerk,
                             max_joint);
}

int Ikfunc::CountCurvelLineSize(RoadPoint s_point, RoadPoint e_point, int speed) {
  return qal::CountFixedMove(s_point, e_point, speed);
}

bool Ikfunc::CountCurveLineToBuffer(RoadPoint s_point, RoadPoint e_point, int step_count,
                                    RoadPoint* point_array) {
  return qal::FillFixedMove(kLoadedArm, s_point, e_point, step_count, point_array);
}

bool Ikfunc::CountCurvelLineToBuffer(RoadPoint s_point, RoadPoint e_point,
                                     std::vector<RoadPoint>* point_road, int speed) {
  return qal::PlanRampedMove(kLoadedArm, s_point, e_point, *point_road, speed);
}

int Ikfunc::CountRunCurvelLineSize(RoadPoint s_point, RoadPoint e_point, int speed, int max_acc) {
  return qal::RunCycles(kReferenceNumbers, s_point, e_point, speed, max_acc).value_or(0);
}

bool Ikfunc::CountRunCurvelLineToBuffer(RoadPoint s_point, RoadPoint e_point,
                                        std::vector<RoadPoint>* point_road, int speed,
                                        int max_acc) {
  return qal::PlanRun(kLoadedArm, s_point, e_point, *point_road, speed, max_acc);
}

bool Ikfunc::CheckRobotJointStep(RoadPoint& point1, RoadPoint& point2, int max_joint_speed_rpm) {
  return qal::CheckJointStep(kLoadedArm, point1, point2, max_joint_speed_rpm);
}

void Ikfunc::countjointdis(RoadPoint s_point, RoadPoint e_point, float* arm_run_joint) {
  qal::RunTravels(kReferenceNumbers, s_point, e_point, arm_run_joint);
}

int Ikfunc::countmaxruntime(double max_run_dis, double joint_max_speed, int joint_acc,
                            double step_time, int radio) {
  if (joint_acc < 1 || !(joint_max_speed > 0.0)) return 0;
  return qal::FastestCycles(kReferenceNumbers, max_run_dis, joint_max_speed, joint_acc, step_time,
                            radio)
      .value_or(0);
}

int Ikfunc::caltimeslover(int n, double run_dis, double step_time, int radio, int acc) {
  return qal::CruiseCycles(kReferenceNumbers, n, run_dis, step_time, radio, acc);
}

void Ikfunc::getJointStepLength(float joint_distance, int alljointruncount, int max_speed_count,
                                int joint_id, double* result, int /*max_acc*/) {
  constexpr int kLastJoint = qal::kJointCount - 1;  // a small axis, as any other number counts
  const int joint = joint_id >= 0 && joint_id < kLastJoint ? joint_id : kLastJoint;
  qal::JointSteps(kReferenceNumbers, joint_distance, alljointruncount, max_speed_count, joint,
                  result);
}
