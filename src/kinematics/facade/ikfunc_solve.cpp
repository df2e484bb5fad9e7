#include "../ikfunc.h"
#include "../solve/forward.h"
#include "../solve/inverse.h"
#include "loaded_arm.h"

using qal::kLoadedArm;

bool Ikfunc::ArmFk(Pos& arm_pos, Ori& arm_ori, double* joint_solve) {
  return qal::ForwardPose(kLoadedArm, joint_solve, arm_pos, arm_ori);
}

bool Ikfunc::ArmFk(RoadPoint& arm_pos) { return qal::ForwardPose(kLoadedArm, arm_pos); }

bool Ikfunc::ArmIk(RoadPoint& cur_stat, double* joint) {
  return qal::SolveNearest(kLoadedArm, cur_stat, joint);
}

bool Ikfunc::ArmIk(RoadPoint& cur_stat) {
  RoadPoint solved = cur_stat;
  return qal::SolveNearest(kLoadedArm, solved, solved.jointpos);
}

bool Ikfunc::ChekcArmPointok(RoadPoint testpoint) {
  return qal::JointsHavePosition(kLoadedArm, testpoint);
}

bool Ikfunc::ArmCheckAndCountSimilarIk(RoadPoint& cur_stat) {
  return qal::MoveWithinReach(kLoadedArm, cur_stat);
}

bool Ikfunc::ArmJointIk(RoadPoint& cur_stat, double* joint, double max_joint_step_range) {
  return qal::SolveWithin(kLoadedArm, cur_stat, joint, max_joint_step_range);
}

bool Ikfunc::ArmJointIk(RoadPoint& cur_stat, RoadPoint& dis_stat, double max_joint_step_range) {
  return qal::SolveFrom(kLoadedArm, cur_stat, dis_stat, max_joint_step_range);
}

bool Ikfunc::ArmLineMoveIk(RoadPoint& cur_stat, const Pos& dis, double* joint,
                           double max_joint_step_range) {
  return qal::SolveLineStep(kLoadedArm, cur_stat, dis, joint, max_joint_step_range);
}

bool Ikfunc::ArmIk(RoadPoint& cur_stat, int coordinate, int move_mode, double step,
                   RoadPoint& result) {
  return qal::SolveJog(kLoadedArm, cur_stat, coordinate, move_mode, step, result);
}
