#include <fmt/format.h>
#include <qal/model/rotations.h>

#include <algorithm>
#include <cmath>

#include "../../io/error.h"
#include "../../io/messages.h"
#include "line_arguments.h"

namespace qal::tools {

using namespace io;

namespace {

// What the number of a limit may be: far around any arm's, and well inside a float.
float ReadLimit(const NumberOption& option, const Units& units) {
  const double limit =
      units.Metres(option.ReadWithin(units.Length(kLeastLimit), units.Length(kMostLimit)));
  return static_cast<float>(limit);
}

// Says where the plan of an S-curve ends: mostly after its first phase, as it is made to.
void NoteSCurve(const classic::Ends& ends, const std::vector<State>& plan, const Units& units) {
  const double length_m = Distance(ends.start.pose.position, ends.end.position);
  const double along_m = Distance(ends.start.pose.position, plan.back().pose.position);
  if (Distance(plan.back().pose.position, ends.end.position) == 0.0) {
    return Note("the line is too short for an S-curve: the plan is its two ends");
  }
  Note(fmt::format(
      "the S-curve plan ends after its first phase, as it is made to: {} points, {:.6g} of {:.6g} "
      "{} ({:.3g} %) along the line",
      plan.size(), units.Length(along_m), units.Length(length_m), units.length(),
      100.0 * along_m / length_m));
}

}  // namespace

ClassicLine ClassicLine::Slower(double part) const {
  const auto fewer = [part](int whole) {
    return std::max(1, static_cast<int>(std::floor(part * whole)));
  };
  const auto less = [part](float limit) { return static_cast<float>(part * limit); };
  return {fewer(speed),
          precision * part,
          {less(s_curve.acceleration_m_s2), less(s_curve.jerk_m_s3), s_curve.motor_speed_rpm}};
}

ClassicLine ReadClassicLine(const LineArguments& a) {
  const Units& units = a.plan.common.units;
  ClassicLine line;
  if (a.profile == "s-curve") {
    line.s_curve = {ReadLimit(a.acc, units), ReadLimit(a.jerk, units),
                    a.motor_rpm.ReadWhole(1, kMostSetting)};
  } else if (a.precision.given()) {
    line.precision = a.precision.ReadWithin(kLeastLimit, kMostLimit);
  } else {
    line.speed = a.speed.ReadWhole(1, kMostSetting);
  }
  return line;
}

Planner ClassicPlanner(const LineArguments& a, const ClassicLine& line) {
  if (a.profile == "s-curve") {
    return
        [limits = line.s_curve](const Arm& arm, const classic::Ends& ends, const auto& listener) {
          return classic::SCurveLine(arm, ends, limits, listener);
        };
  }
  if (a.precision.given()) {
    return [precision = line.precision](const Arm& arm, const classic::Ends& ends,
                                        const auto& listener) {
      return classic::FineLine(arm, ends, precision, listener);
    };
  }
  const auto plan = a.profile == "ramp" ? classic::RampedLine : classic::FixedLine;
  return
      [plan, speed = line.speed](const Arm& arm, const classic::Ends& ends, const auto& listener) {
        return plan(arm, ends, speed, listener);
      };
}

void RunClassicLine(const LineArguments& a) {
  const Planner planner = ClassicPlanner(a, ReadClassicLine(a));
  if (a.profile != "s-curve") return RunClassic(a.ends, a.plan, planner);
  const Units& units = a.plan.common.units;
  RunClassic(a.ends, a.plan, [&](const Arm& arm, const classic::Ends& ends, const auto& listener) {
    classic::Plan plan = planner(arm, ends, listener);
    if (plan) NoteSCurve(ends, *plan, units);
    return plan;
  });
}

}  // namespace qal::tools
