#include "../../core/decimals.h"
#include "../ikfunc.h"
#include "../pose/agreement.h"
#include "../pose/euler.h"
#include "../pose/frame_moves.h"
#include "../solve/solver_query.h"

// Written out: callers built against the header link to it.
Ikfunc::Ikfunc() {}  // NOLINT(modernize-use-equals-default)

void Ikfunc::QuaternionToEulerAngle(Ori orientation, double* EulerAngle) {
  qal::QuaternionToEuler(orientation, EulerAngle);
}

void Ikfunc::EulerAngleToQuaternion(Ori& orientation, double* EulerAngle) {
  qal::EulerToQuaternion(EulerAngle, orientation);
}

void Ikfunc::QuaternionToEulerDis(RoadPoint roadpoint1, RoadPoint roadpoint2, double* EulerDis) {
  qal::EulerDifference(roadpoint1.orientation, roadpoint2.orientation, EulerDis);
}

void Ikfunc::QuaternionAddEuler(RoadPoint& roadpoint1, double* EulerDis) {
  qal::AddEuler(EulerDis, roadpoint1.orientation);
}

// NaN is not >= 0, so it counts as negative.
double Ikfunc::SIGN(double x) { return x >= 0.0 ? 1.0 : -1.0; }

double Ikfunc::NORM(double a, double b, double c, double d) { return qal::Norm(a, b, c, d); }

double Ikfunc::SectionNum(double num) { return qal::CutSixDecimals(num); }

double Ikfunc::SectionFourNum(double num) { return qal::CutFourDecimals(num); }

bool Ikfunc::PointAngTest(double* a, double* b) { return qal::JointsAgreeToHalfADegree(a, b); }

bool Ikfunc::PositionCompare(RoadPoint roadpoint1, RoadPoint roadpoint2, float pos_range,
                             float ori_range) {
  return qal::PosesAgree(roadpoint1, roadpoint2, pos_range, ori_range);
}

bool Ikfunc::JointCompare(RoadPoint roadpoint1, RoadPoint roadpoint2, float joint_range) {
  return qal::JointsAgree(roadpoint1.jointpos, roadpoint2.jointpos, joint_range);
}

void Ikfunc::CountEerotEetrans(RoadPoint& tempPoint, double* eerot, double* eetrans) {
  qal::EncodePose(tempPoint, eerot, eetrans);
}

Pos Ikfunc::EndMoveXYZ(const Ori& end_ori, const Pos& mov_dst) {
  return qal::ToBaseFrame(end_ori, mov_dst);
}

Pos Ikfunc::WorldMoveXYZ(const Pos& ori_pos, const Pos& dis) { return ori_pos + dis; }

Ori Ikfunc::EndRotXYZ(const Ori& end_ori, const Roz& rel_ori) {
  return qal::TurnedAboutToolAxis(end_ori, rel_ori);
}

RoadPoint Ikfunc::RelatMove(const RoadPoint& end_pos, const Pos& mov_dst) {
  return qal::MovedInToolFrame(end_pos, mov_dst);
}

RoadPoint Ikfunc::RelatRot(const RoadPoint& end_pos, const Roz& rot_dst) {
  return qal::TurnedInToolFrame(end_pos, rot_dst);
}

RoadPoint Ikfunc::PointDis(RoadPoint& roadpoint1, RoadPoint& roadpoint2) {
  return qal::PoseDifference(roadpoint1, roadpoint2);
}

RoadPoint Ikfunc::PointAdd(RoadPoint& roadpoint1, RoadPoint& roadpoint_dis) {
  return qal::PoseSum(roadpoint1, roadpoint_dis);
}

RoadPoint Ikfunc::EndMove(const RoadPoint& cur_stat, int coordinate, int move_mode, double step) {
  return qal::JogTarget(cur_stat, coordinate, move_mode, step);
}
