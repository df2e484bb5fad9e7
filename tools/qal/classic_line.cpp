#include <fmt/format.h>
#include <qal/model/rotations.h>

#include "../../io/error.h"
#include "../../io/messages.h"
#include "line_arguments.h"

namespace qal::tools {

using namespace io;

namespace {

// Well inside a float.
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

Planner PlannerOf(const LineArguments& a) {
  const Units& units = a.plan.common.units;
  if (a.profile == "s-curve") {
    const classic::SCurveLimits limits{ReadLimit(a.acc, units), ReadLimit(a.jerk, units),
                                       a.motor_rpm.ReadWhole(1, kMostSetting)};
    return [limits, &units](const Arm& arm, const classic::Ends& ends,
                            const classic::Listener& listener) {
      classic::Plan plan = classic::SCurveLine(arm, ends, limits, listener);
      if (plan) NoteSCurve(ends, *plan, units);
      return plan;
    };
  }
  if (a.precision.given()) {
    const double precision = a.precision.ReadWithin(1e-6, 1e6);
    return [precision](const Arm& arm, const classic::Ends& ends, const auto& listener) {
      return classic::FineLine(arm, ends, precision, listener);
    };
  }
  const int speed = a.speed.ReadWhole(1, kMostSetting);
  const auto plan = a.profile == "ramp" ? classic::RampedLine : classic::FixedLine;
  return [plan, speed](const Arm& arm, const classic::Ends& ends, const auto& listener) {
    return plan(arm, ends, speed, listener);
  };
}

}  // namespace

void RunClassicLine(const LineArguments& a) {
  if (a.profile == "fixed" && a.speed.given() == a.precision.given()) {
    throw UsageError("--profile fixed: one of --speed and --precision is expected");
  }
  RunClassic(a.ends, a.plan, PlannerOf(a));
}

}  // namespace qal::tools
