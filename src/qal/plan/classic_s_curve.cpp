#include <cmath>

#include "../../kinematics/trajectory/straight_line.h"
#include "../model/exceptions.h"
#include "../model/rotations.h"
#include "classic_session.h"

namespace qal::classic {

namespace {

// Why the operation refuses a profile, or has none.
Failure NoProfile(const SCurveLimits& limits, double length_m) {
  const auto acceleration = static_cast<double>(limits.acceleration_m_s2);
  const auto jerk = static_cast<double>(limits.jerk_m_s3);
  constexpr double kShortestPhaseS = 0.02;
  if (!(acceleration > kShortestPhaseS * jerk)) {
    return {{Reason::kAccelerationTooLow, -1, acceleration, kShortestPhaseS * jerk}};
  }
  return {
      {Reason::kSetting, -1, acceleration, std::cbrt(length_m / 2 / jerk) * jerk, "acceleration"}};
}

// The motor speed that a step of a joint in one cycle takes [rpm].
double MotorSpeedRpm(const Session& session, int joint, double step_rad) {
  const ArmNumbers& numbers = session.context().numbers;
  return step_rad * numbers.gear_ratio[joint] / numbers.shaft_rad_per_rpm_cycle;
}

// A joint step that the operation has refused, or whatever else has ended it.
Failure Refused(const Session& session) {
  const auto& heard = session.failure();
  if (!heard || heard->event != Event::kJointStepTooLarge) return {{Reason::kOutOfReach}};
  return {{Reason::kMotorSpeed, heard->joint, MotorSpeedRpm(session, heard->joint, heard->value),
           MotorSpeedRpm(session, heard->joint, heard->bound)},
          std::nullopt,
          ToState(heard->point).pose};
}

}  // namespace

Plan SCurveLine(const Arm& arm, const Ends& ends, const SCurveLimits& limits,
                const Listener& listener) {
  return CatchingSolver([&]() -> Plan {
    const Session session(arm, listener);
    State end = {ends.end_joints.value_or(Joints{}), ends.end};
    if (!ends.end_joints) {
      const Result<State> solved = session.SolveEnd(ends.end, ends.start.joints);
      if (!solved) return Failure{solved.error(), std::nullopt, ends.end};
      end = *solved;
    }
    const RoadPoint start = ToRoadPoint(ends.start.pose, ends.start.joints);
    std::vector<RoadPoint> road;
    const int result =
        PlanSCurveLine(session.context(), start, ToRoadPoint(end.pose, end.joints), road,
                       limits.acceleration_m_s2, limits.jerk_m_s3, limits.motor_speed_rpm);
    constexpr int kNoProfile = -2;
    const double length_m = Distance(ends.start.pose.position, ends.end.position);
    if (result == kNoProfile) return NoProfile(limits, length_m);
    if (result < 0) return Refused(session);
    if (road.empty()) return NoProfile(limits, length_m);
    // The first phase doesn't have the start among its points, a short line does.
    std::vector<State> states;
    if (!(road.front().position == start.position)) states.push_back(ends.start);
    for (const RoadPoint& point : road) {
      if (!session.Reaches(point)) {
        RoadPoint held = point;
        const Joints& before = states.empty() ? ends.start.joints : states.back().joints;
        std::copy(before.begin(), before.end(), held.jointpos);
        return Failure{session.WhyUnsolved(held, kLineStepRad), states.size(), ToState(point).pose};
      }
      states.push_back(ToState(point));
    }
    return states;
  });
}

}  // namespace qal::classic
