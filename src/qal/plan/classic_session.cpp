#include "classic_session.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "../../core/point_text.h"
#include "../../kinematics/facade/messages.h"
#include "../../kinematics/solve/judgement.h"
#include "../../kinematics/solve/solver_query.h"
#include "../model/rotations.h"
#include "../solve/kinematics.h"

namespace qal::classic {

namespace {

// Writes the operations' messages into one text.
class Words {
 public:
  const std::string& text() const { return text_; }
  void Error(std::string_view message) const { text_ += message; }
  void Line(std::string_view line) const { text_.append(line) += '\n'; }
  template <typename Number>
  void Line(std::string_view line, Number number) const {
    Line(NumberedText(line, number).view());
  }
  void Point(const RoadPoint& point) const { text_ += PointText(point).view(); }

 private:
  mutable std::string text_;  // saying is const, since the console keeps nothing
};

// Whether two numbers that were worked out in different ways are the same one.
bool Same(double a, double b) { return std::fabs(a - b) <= 1e-12 * std::fabs(b); }

bool HasReferenceMotors(const ArmNumbers& numbers) {
  if (!Same(numbers.cycle_s, kReferenceNumbers.cycle_s)) return false;
  for (int j = 0; j < kJointCount; ++j) {
    if (!Same(numbers.gear_ratio[j], kReferenceNumbers.gear_ratio[j]) ||
        !Same(numbers.full_speed_rpm[j], kReferenceNumbers.full_speed_rpm[j])) {
      return false;
    }
  }
  return true;
}

}  // namespace

ArmNumbers NumbersOf(const Arm& arm) {
  constexpr double kPi = 3.14159265358979323846;
  ArmNumbers numbers = {};
  numbers.cycle_s = arm.cycle_s().value;
  numbers.cycle_ms = std::round(numbers.cycle_s * 1e9) / 1e6;  // whole nanoseconds
  numbers.ticks_per_cycle = numbers.cycle_s / kTickS;
  numbers.shaft_rad_per_rpm_cycle = kShaftRadPerRpmTick * numbers.ticks_per_cycle;
  for (int j = 0; j < kJointCount; ++j) {
    const JointModel& joint = arm.joints()[static_cast<size_t>(j)];
    numbers.range[j] = kClassicRange;
    numbers.gear_ratio[j] = joint.gear_ratio.value;
    numbers.full_speed_rpm[j] = joint.motor_speed_rpm();
    numbers.dead_band_rad[j] = 2 * kPi / 4096 / joint.gear_ratio.value;
    numbers.joint_rad_per_rpm_cycle[j] = numbers.shaft_rad_per_rpm_cycle / joint.gear_ratio.value;
  }
  return HasReferenceMotors(numbers) ? kReferenceNumbers : numbers;
}

RoadPoint ToRoadPoint(const Pose& pose, const Joints& joints) {
  const auto& [p, q] = pose;
  RoadPoint point;
  point.position = Pos(p.x, p.y, p.z);
  point.orientation = Ori(q.w, q.x, q.y, q.z);
  std::copy(joints.begin(), joints.end(), point.jointpos);
  point.ik_flag = true;
  return point;
}

State ToState(const RoadPoint& point) {
  const Pos& p = point.position;
  const Ori& q = point.orientation;
  State state = {{}, {{p.x, p.y, p.z}, {q.w, q.x, q.y, q.z}}};
  std::copy(point.jointpos, point.jointpos + kJointCount, state.joints.begin());
  return state;
}

void Session::Hear(const Report& report) const {
  if (listener_) {
    const Words words;
    Say(report, words);
    if (!words.text().empty()) listener_(words.text());
  }
  switch (report.event) {
    case Event::kNoPose:
    case Event::kUnsolved:
    case Event::kInadmissible:
    case Event::kShortLine:
    case Event::kFirstPhase:
    case Event::kUnprofiledRun:
    case Event::kRun:
      return;  // not the end of an operation, or told again with the point
    default:
      break;
  }
  if (failure_) return;
  failure_ = Heard{report.event, report.point != nullptr ? *report.point : RoadPoint(),
                   report.index, report.joint,
                   report.value, report.bound};
}

Error Session::WhyUnsolved(const RoadPoint& point, double step_bound_rad) const {
  SolutionList solutions;
  if (!QuerySolver(context_, point, solutions)) return {Reason::kOutOfReach};
  Error nearest = {Reason::kSolverFault, -1, 0, 0, "says that there are solutions and gives none"};
  double nearest_distance = std::numeric_limits<double>::infinity();
  solutions.ForEach([&](const double* joints) {
    double distance = 0.0;
    for (int j = 0; j < kJointCount; ++j) distance += std::fabs(joints[j] - point.jointpos[j]);
    if (!(distance < nearest_distance)) return;
    nearest_distance = distance;
    const auto [refusal, j, until] = Judge(joints, point.jointpos, step_bound_rad, numbers_.range);
    if (refusal == Refusal::kJointRange) {
      const JointRange& range = numbers_.range[j];
      nearest = {Reason::kJointRange, j, joints[j],
                 joints[j] < range.lower ? range.lower : range.upper, kClassicRangeDetail};
    } else if (refusal == Refusal::kStepBound) {
      nearest = {Reason::kStepBound, j, std::fabs(joints[j] - point.jointpos[j]), step_bound_rad};
    } else {
      nearest = {Reason::kOutOfReach};  // admissible now: the operation queried another pose
    }
  });
  return nearest;
}

Result<State> Session::SolveEnd(const Pose& end, const Joints& near) const {
  const auto candidates = Inverse(arm_, end, near);
  if (!candidates) return candidates.error();
  const Candidate* nearest = nullptr;
  for (const Candidate& candidate : *candidates) {
    if (nearest != nullptr && !(candidate.distance_rad < nearest->distance_rad)) continue;
    const double* joints = candidate.joints.data();
    const Judgement judgement = Judge(joints, near.data(), kNoStepBound, numbers_.range);
    if (judgement.refusal == Refusal::kNone) nearest = &candidate;
  }
  if (nearest == nullptr) return WhyUnsolved(ToRoadPoint(end, near), kNoStepBound);
  return State{nearest->joints, end};
}

bool Session::Reaches(const RoadPoint& point) const {
  constexpr double kNudgedM = 1e-4;
  constexpr double kNudgedRad = 1e-4;
  const State state = ToState(point);
  const Result<Pose> reached = Forward(arm_, state.joints);
  if (!reached) return false;
  return Distance(reached->position, state.pose.position) <= kNudgedM &&
         AngleBetween(reached->orientation, state.pose.orientation) <= kNudgedRad;
}

}  // namespace qal::classic
