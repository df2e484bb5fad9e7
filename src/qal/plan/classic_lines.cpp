#include <algorithm>
#include <cmath>
#include <limits>

#include "../../kinematics/pose/agreement.h"
#include "../../kinematics/solve/inverse.h"
#include "../../kinematics/trajectory/straight_line.h"
#include "../model/exceptions.h"
#include "../model/rotations.h"
#include "classic_session.h"

namespace qal::classic {

namespace {

using Road = std::vector<RoadPoint>;

// A line's ends as the operations want them: the end has the start's orientation, exactly, and
// joints that the operations can look for it from.
struct Line {
  RoadPoint start, end;

  double Length() const { return LengthOf(end.position - start.position); }
};

Failure At(const RoadPoint& point, size_t index, const Error& error) {
  return {error, index, ToState(point).pose};
}

Failure Unsolved(const Session& session, const RoadPoint& point, size_t index,
                 double step_bound_rad) {
  return At(point, index, session.WhyUnsolved(point, step_bound_rad));
}

std::optional<Error> NoPair(const Ends& ends) {
  const RoadPoint start = ToRoadPoint(ends.start.pose, ends.start.joints);
  const RoadPoint end = ToRoadPoint(ends.end, ends.start.joints);
  if (PosesAgree(start, end, kLinePairPositionM, kLinePairOrientation)) return std::nullopt;
  const Pos apart = end.position - start.position;
  const double farthest = std::max({std::fabs(apart.x), std::fabs(apart.y), std::fabs(apart.z)});
  const double bound_m = static_cast<double>(kLinePairPositionM);
  if (!(farthest <= bound_m)) return Error{Reason::kEndsApart, -1, farthest, bound_m};
  const double turned = AngleBetween(ends.start.pose.orientation, ends.end.orientation);
  return Error{Reason::kEndsTurned, -1, turned, static_cast<double>(kLinePairOrientation)};
}

Line Aligned(const Session& session, const Ends& ends) {
  Line line = {ToRoadPoint(ends.start.pose, ends.start.joints),
               ToRoadPoint(ends.end, ends.end_joints.value_or(ends.start.joints))};
  line.end.orientation = line.start.orientation;
  if (ends.end_joints) return line;
  RoadPoint solved = line.end;
  if (SolveNearest(session.context(), solved, line.end.jointpos)) line.end = solved;
  return line;
}

// Checks each point, and gives the last one the line's end. Where that has no joints of its own, it
// gets those that the line arrives with: the operations append it unseen, and the step to it.
Plan Arrive(const Session& session, const Ends& ends, const Line& line, Road road,
            double step_bound_rad) {
  std::vector<State> states;
  if (!road.empty()) road.pop_back();
  for (size_t i = 0; i < road.size(); ++i) {
    if (!session.Reaches(road[i])) {
      RoadPoint held = road[i];
      const Joints& before = i == 0 ? ends.start.joints : states.back().joints;
      std::copy(before.begin(), before.end(), held.jointpos);
      return Unsolved(session, held, i, step_bound_rad);
    }
    states.push_back(ToState(road[i]));
  }
  const State before = states.empty() ? ends.start : states.back();
  State last = {ends.end_joints.value_or(Joints{}), ends.end};
  if (!ends.end_joints) {
    const Result<State> solved = session.SolveEnd(ends.end, before.joints);
    if (!solved) return At(line.end, states.size(), solved.error());
    last = *solved;
  }
  for (size_t j = 0; j < last.joints.size(); ++j) {
    const double step = std::fabs(last.joints[j] - before.joints[j]);
    if (step <= kLineStepRad) continue;
    return At(line.end, states.size(),
              {Reason::kConfiguration, static_cast<int>(j), step, kLineStepRad});
  }
  states.push_back(last);
  return states;
}

template <typename Make>
Plan Planned(const Arm& arm, const Ends& ends, const Listener& listener, Make make) {
  return CatchingSolver([&]() -> Plan {
    if (const auto error = NoPair(ends)) return Failure{*error};
    const Session session(arm, listener);
    return make(session, Aligned(session, ends));
  });
}

// The failure of a line whose operation has told of a point.
Failure Told(const Session& session, size_t index, double step_bound_rad) {
  if (!session.failure()) return {{Reason::kSolverFault, -1, 0, 0, "answers one call otherwise"}};
  return Unsolved(session, session.failure()->point, index, step_bound_rad);
}

}  // namespace

Plan FixedLine(const Arm& arm, const Ends& ends, int speed, const Listener& listener) {
  return Planned(arm, ends, listener, [&](const Session& session, const Line& line) -> Plan {
    const Context& context = session.context();
    const double step_m = FixedLineStep(speed);
    constexpr int kEndUnsolved = -1;
    const int count = CountFixedLine(context, line.start, line.end, speed);
    if (count == kEndUnsolved) {
      const auto steps = static_cast<size_t>(line.Length() / step_m);
      return Unsolved(session, line.end, steps, kNoStepBound);
    }
    if (count < 1 && !session.failure()) {
      return Failure{{Reason::kSetting, -1, static_cast<double>(speed), 1, "speed"}};
    }
    const auto index = [&session] { return static_cast<size_t>(session.failure()->index); };
    if (count < 1) return Told(session, index(), step_m * kCountedStepFactor);
    Road road(static_cast<size_t>(count));
    if (!FillFixedLine(context, line.start, line.end, count, road.data(), speed)) {
      return Told(session, session.failure() ? index() : 0, step_m * kFixedStepFactor);
    }
    return Arrive(session, ends, line, std::move(road), step_m * kFixedStepFactor);
  });
}

Plan FineLine(const Arm& arm, const Ends& ends, double precision, const Listener& listener) {
  return Planned(arm, ends, listener, [&](const Session& session, const Line& line) -> Plan {
    // A million points are 83 minutes; each takes memory, and time to solve.
    constexpr double kMostSteps = 1e6;
    const double steps = line.Length() / (kFixedLineStepM * precision);
    if (!(precision > 0.0)) return Failure{{Reason::kSetting, -1, precision, 0, "precision"}};
    if (!(steps <= kMostSteps)) return Failure{{Reason::kTooManyPoints, -1, steps, kMostSteps}};
    // The end point, and one more where the operation's quotient rounds the other way.
    Road road(static_cast<size_t>(steps) + 2);
    const int count = FillFineLine(session.context(), line.start, line.end, precision, road.data());
    road.resize(static_cast<size_t>(std::max(count, 0)));
    return Arrive(session, ends, line, std::move(road), kHoldStepRad);
  });
}

Plan RampedLine(const Arm& arm, const Ends& ends, int speed, const Listener& listener) {
  return Planned(arm, ends, listener, [&](const Session& session, const Line& line) -> Plan {
    if (speed < 1) return Failure{{Reason::kSetting, -1, static_cast<double>(speed), 1, "speed"}};
    Road road;
    if (!PlanRampedLine(session.context(), line.start, line.end, road, speed)) {
      return Told(session, road.size(), kLineStepRad);
    }
    if (road.empty()) {
      return Failure{{Reason::kTooShort, -1, line.Length(), ShortestRampedLine(speed)}};
    }
    return Arrive(session, ends, line, std::move(road), kLineStepRad);
  });
}

}  // namespace qal::classic
