#include <limits>
#include <optional>

#include "../../core/decimals.h"
#include "../arm_constants.h"
#include "../diagnostics.h"
#include "../ikfunc.h"
#include "line_walk.h"

// Each point is solved against the joints of the one before. The working point carries them along:
// a failed solve leaves them as they are, so they serve as its own reference.

namespace {

// Step of a speed setting [m]; 0.00004 a unit.
double StepOfSpeed(int speed) { return speed * qal::kFixedLineStepM / 5.0; }

void ReportNoPair(RoadPoint& s_point, RoadPoint& e_point) {
  qal::WriteLine(qal::kFixedLinePairLine);
  s_point.printfPoint();
  e_point.printfPoint();
}

}  // namespace

int Ikfunc::CountLineSize(RoadPoint s_point, RoadPoint e_point, int speed) {
  constexpr int kPointUnsolved = 0;
  constexpr int kEndUnsolved = -1;
  constexpr int kNoLine = -2;
  const double step = StepOfSpeed(speed);
  if (!PositionCompare(s_point, e_point, qal::kLinePairPositionM, qal::kLinePairOrientation)) {
    ReportNoPair(s_point, e_point);
    return kNoLine;
  }
  if (speed < 1) return kNoLine;
  const Pos dst = e_point.position - s_point.position;
  const double length = NORM(dst.x, dst.y, dst.z, 0);
  const std::optional<int> step_count = qal::TruncateToInt(length / step);
  if (!step_count) return kNoLine;  // a NaN coordinate passes the pair check

  RoadPoint temp_pose = s_point;
  for (int i = 0; i < *step_count; ++i) {
    temp_pose.position = qal::PointOnLine(s_point.position, dst, i, *step_count);
    const Pos temp_dst(dst.x / *step_count, dst.y / *step_count, dst.z / *step_count);
    if (!ArmLineMoveIk(temp_pose, temp_dst, temp_pose.jointpos, step * 100.0)) {
      temp_pose.printfPoint();
      return kPointUnsolved;
    }
  }
  if (!ArmIk(e_point, e_point.jointpos)) {
    qal::WriteError(qal::kEndPointError);
    temp_pose.printfPoint();
    return kEndUnsolved;
  }
  return *step_count + 1;
}

bool Ikfunc::CountLineToBuffer(RoadPoint s_point, RoadPoint e_point, int step_count,
                               RoadPoint* point_array, int speed) {
  if (step_count < 1) return false;
  const double limit = StepOfSpeed(speed) * 20.0;
  if (!(s_point.orientation == e_point.orientation)) {
    for (Ori* orientation : {&s_point.orientation, &e_point.orientation}) {
      orientation->w = SectionFourNum(orientation->w);
      orientation->x = SectionFourNum(orientation->x);
      orientation->y = SectionFourNum(orientation->y);
      orientation->z = SectionFourNum(orientation->z);
    }
    // cppcheck-suppress knownConditionTrueFalse  ; it doesn't see that the loop has changed both
    if (!(s_point.orientation == e_point.orientation)) {
      ReportNoPair(s_point, e_point);
      return false;
    }
  }
  const Pos dst = e_point.position - s_point.position;
  RoadPoint temp_pose = s_point;  // with the cut orientation, where it was cut
  for (int i = 0; i < step_count; ++i) {
    temp_pose.position = qal::PointOnLine(s_point.position, dst, i, step_count);
    if (!ArmJointIk(temp_pose, temp_pose.jointpos, limit)) {
      temp_pose.position = Pos(SectionNum(temp_pose.position.x), SectionNum(temp_pose.position.y),
                               SectionNum(temp_pose.position.z));
      if (!ArmJointIk(temp_pose, temp_pose.jointpos, limit)) {
        qal::WriteLine(qal::kFixedLineIkLine, i);
        temp_pose.printfPoint();
        return false;
      }
    }
    point_array[i] = temp_pose;
  }
  point_array[step_count - 1] = e_point;
  return true;
}

int Ikfunc::CountLineToBuffer(RoadPoint s_point, RoadPoint e_point, double precis,
                              RoadPoint* point_array) {
  constexpr int kNoLine = -2;
  const double step = qal::kFixedLineStepM * precis;
  if (!(s_point.orientation == e_point.orientation) || !(precis > 0.0)) return kNoLine;
  const Pos dst = e_point.position - s_point.position;
  const std::optional<int> whole_steps = qal::TruncateToInt(NORM(dst.x, dst.y, dst.z, 0) / step);
  // The end point has to be counted too.
  if (!whole_steps || *whole_steps == std::numeric_limits<int>::max()) return kNoLine;
  const int step_count = *whole_steps;

  RoadPoint temp_pose = s_point;
  for (int i = 0; i < step_count; ++i) {
    temp_pose.position = qal::PointOnLine(s_point.position, dst, i, step_count);
    // An unsolved point keeps the joints of the one before; the solve has written its message.
    (void)ArmJointIk(temp_pose, temp_pose.jointpos, qal::kHoldStepRad);
    point_array[i] = temp_pose;
  }
  (void)ArmJointIk(e_point, e_point.jointpos, qal::kHoldStepRad);
  point_array[step_count] = e_point;
  return step_count + 1;
}
