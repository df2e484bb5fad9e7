#include <cmath>
#include <limits>

#include "../../kinematics/pose/frame_moves.h"
#include "../../kinematics/solve/inverse.h"
#include "../../kinematics/trajectory/joint_move.h"
#include "../model/exceptions.h"
#include "../model/rotations.h"
#include "classic_session.h"

namespace qal::classic {

namespace {

using Road = std::vector<RoadPoint>;

// The operation's points, with the start in front of them where it isn't the first.
Plan StatesOf(const State& start, const Road& road, bool with_start) {
  std::vector<State> states;
  states.reserve(road.size() + 1);
  if (!with_start) states.push_back(start);
  for (const RoadPoint& point : road) states.push_back(ToState(point));
  return states;
}

template <typename Make>
Plan Planned(const Arm& arm, const State& start, const State& end, const Listener& listener,
             Make make) {
  return CatchingSolver([&]() -> Plan {
    const Session session(arm, listener);
    return make(session.context(), ToRoadPoint(start.pose, start.joints),
                ToRoadPoint(end.pose, end.joints));
  });
}

Failure TooLow(const char* setting, int value, int least) {
  return {{Reason::kSetting, -1, static_cast<double>(value), static_cast<double>(least), setting}};
}

Failure TooMany(double points, double most) { return {{Reason::kTooManyPoints, -1, points, most}}; }

Quat RotationAbout(Axis axis, double angle_rad) {
  const double s = std::sin(angle_rad / 2);
  const double c = std::cos(angle_rad / 2);
  return {c, axis == Axis::kX ? s : 0, axis == Axis::kY ? s : 0, axis == Axis::kZ ? s : 0};
}

}  // namespace

Plan FixedMove(const Arm& arm, const State& start, const State& end, int speed,
               const Listener& listener) {
  return Planned(arm, start, end, listener,
                 [&](const Context& context, const RoadPoint& from, const RoadPoint& to) -> Plan {
                   const int count = CountFixedMove(from, to, speed);
                   if (count < 1) return TooLow("speed", speed, 1);
                   Road road(static_cast<size_t>(count), from);
                   (void)FillFixedMove(context, from, to, count, road.data());
                   return StatesOf(start, road, true);
                 });
}

Plan RampedMove(const Arm& arm, const State& start, const State& end, int speed,
                const Listener& listener) {
  return Planned(arm, start, end, listener,
                 [&](const Context& context, const RoadPoint& from, const RoadPoint& to) -> Plan {
                   Road road;
                   if (!PlanRampedMove(context, from, to, road, speed)) {
                     return TooLow("speed", speed, 2);
                   }
                   return StatesOf(start, road, true);
                 });
}

Plan TrapezoidMove(const Arm& arm, const State& start, const State& end, int percent, int motor_acc,
                   const Listener& listener) {
  return Planned(arm, start, end, listener,
                 [&](const Context& context, const RoadPoint& from, const RoadPoint& to) -> Plan {
                   if (percent < 1) return TooLow("speed", percent, 1);
                   if (motor_acc < 1) return TooLow("acceleration", motor_acc, 1);
                   const auto cycles = RunCycles(context.numbers, from, to, percent, motor_acc);
                   constexpr int kMost = kLongestRunCycles;
                   if (!cycles || *cycles > kMost) {
                     return TooMany(cycles ? *cycles : std::numeric_limits<double>::infinity(),
                                    kMost);
                   }
                   Road road;
                   (void)PlanRun(context, from, to, road, percent, motor_acc);
                   // A move too short for a profile is its two ends.
                   return StatesOf(start, road, road.size() == 2);
                 });
}

Result<State, Failure> Jog(const Arm& arm, const State& from, const JogStep& jog,
                           const Listener& listener) {
  using Answer = Result<State, Failure>;
  return CatchingSolver([&]() -> Answer {
    const Session session(arm, listener);
    const RoadPoint current = ToRoadPoint(from.pose, from.joints);
    const double bound = std::fabs(jog.step) * kJogStepFactor;
    RoadPoint target = current;
    RoadPoint result;
    bool solved = false;
    if (jog.turns && jog.frame == Frame::kBase) {
      const Quat turned = RotationAbout(jog.axis, jog.step) * from.pose.orientation;
      target = ToRoadPoint({from.pose.position, turned}, from.joints);
      result = target;
      solved = SolveWithin(session.context(), result, from.joints.data(), bound);
    } else {
      const int mode = static_cast<int>(jog.axis) + (jog.turns ? 3 : 0);
      const int coordinate = jog.frame == Frame::kTool ? 1 : 0;
      target = JogTarget(current, coordinate, mode, jog.step);
      solved = SolveJog(session.context(), current, coordinate, mode, jog.step, result);
    }
    if (solved && session.Reaches(result)) return ToState(result);
    return Failure{session.WhyUnsolved(target, bound), std::nullopt, ToState(target).pose};
  });
}

}  // namespace qal::classic
