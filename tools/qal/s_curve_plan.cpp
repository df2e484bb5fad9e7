#include <fmt/format.h>

#include <cmath>
#include <limits>

#include "../../io/error.h"
#include "../../io/finite_differences.h"
#include "../../io/messages.h"
#include "../../src/kinematics/ikfunc.h"
#include "../../src/kinematics/trajectory/straight_line.h"
#include "line_failure.h"
#include "line_plan.h"
#include "waypoints.h"

namespace qal::tools {

using namespace io;

namespace {

int Plan(const Move& move, const SCurveLimits& limits, int motor_speed_rpm,
         std::vector<RoadPoint>& points) {
  constexpr float kNoEffect = 0.0f;  // the velocity limit isn't read
  return Ikfunc::CountSRunCurvelLineToBuffer(move.start, move.end, &points, kNoEffect,
                                             limits.acceleration_m_s2, limits.jerk_m_s3,
                                             motor_speed_rpm);
}

// Whether the plan is just the two ends.
bool IsShort(const Move& move, const std::vector<RoadPoint>& points) {
  return points.size() == 2 && points[0].position == move.start.position;
}

// Plans again without a motor limit, to say where and how far it was exceeded.
[[noreturn]] void ThrowTooFast(const Move& move, const SCurveLimits& limits, const Units& units) {
  std::vector<RoadPoint> points;
  (void)Plan(move, limits, std::numeric_limits<int>::max(), points);
  if (points.empty()) throw Failure("the library refuses the line; its own lines above say why");
  const bool is_short = IsShort(move, points);
  if (!is_short) points.insert(points.begin(), move.start);
  const Arm arm = SolverArm();
  const Trajectory trajectory = FromWaypoints(points);
  const FiniteDifferences rates(trajectory);
  double fastest_rpm = 0.0;
  size_t at_point = 0;
  size_t at_joint = 0;
  for (size_t i = 1; i < trajectory.size(); ++i) {
    for (size_t j = 0; j < 6; ++j) {
      const double rpm = std::fabs(MotorRpm(arm, j, rates.JointSpeed(i, j)));
      if (rpm > fastest_rpm) fastest_rpm = rpm, at_point = i, at_joint = j;
    }
  }
  throw Failure(fmt::format(
      "joint {} would need its motor at {:.0f} rpm {}; {} rpm are the limit{}", at_joint + 1,
      fastest_rpm, PlaceOnLine(move, is_short ? at_point : at_point - 1, points[at_point], units),
      (is_short ? 1LL : 2LL) * limits.motor_speed_rpm, is_short ? "" : ", twice --motor-rpm"));
}

}  // namespace

std::vector<RoadPoint> PlanSCurveLine(const Move& move, const SCurveLimits& limits,
                                      const Units& units) {
  std::vector<RoadPoint> points;
  const int result = Plan(move, limits, limits.motor_speed_rpm, points);
  if (result == -2) {
    throw Failure(
        fmt::format("--acc {:g} is built up within 20 ms at --jerk {:g}; it has to be above "
                    "0.02 s * --jerk, {:g}",
                    units.Length(limits.acceleration_m_s2), units.Length(limits.jerk_m_s3),
                    units.Length(0.02 * limits.jerk_m_s3)));
  }
  if (result < 0) ThrowTooFast(move, limits, units);
  if (points.empty()) {
    throw Failure(
        fmt::format("--acc {:g} is reached too early at --jerk {:g}: for a line as long as "
                    "{:.6g} {} the library has no S-curve; raise --acc",
                    units.Length(limits.acceleration_m_s2), units.Length(limits.jerk_m_s3),
                    units.Length(move.Length()), units.length()));
  }
  CheckReached(move, points, kLineStepRad, units);
  if (IsShort(move, points)) {
    Note("the line is too short for an S-curve: the plan is its two ends");
  } else {
    const double along_m = Distance(move.start.position, points.back().position);
    Note(
        fmt::format("the S-curve plan ends after its first phase, as it is made to: {} points, "
                    "{:.6g} of {:.6g} {} ({:.3g} %) along the line",
                    points.size(), units.Length(along_m), units.Length(move.Length()),
                    units.length(), 100.0 * along_m / move.Length()));
  }
  return points;
}

}  // namespace qal::tools
