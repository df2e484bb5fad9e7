#include <fmt/format.h>
#include <qal/model/rotations.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "../../io/error.h"
#include "../../io/messages.h"
#include "commands.h"
#include "move.h"

namespace qal::tools {

using namespace io;

namespace {

struct LineArguments {
  EndOptions ends;
  std::string profile = "ramp";
  NumberOption speed;
  NumberOption precision;
  NumberOption acc;
  NumberOption jerk;
  NumberOption motor_rpm;
  PlanOptions plan;
};

// What an acceleration or a jerk may be in metres: far around any arm's, well inside a float.
float ReadLimit(const NumberOption& option, const Units& units) {
  const double limit = units.Metres(option.ReadWithin(units.Length(1e-6), units.Length(1e6)));
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

void RunLine(const LineArguments& a) {
  const std::initializer_list<const NumberOption*> all = {&a.speed, &a.precision, &a.acc, &a.jerk,
                                                          &a.motor_rpm};
  if (a.profile == "s-curve") RefuseOthers(a.profile, all, {&a.acc, &a.jerk, &a.motor_rpm});
  if (a.profile == "ramp") RefuseOthers(a.profile, all, {&a.speed});
  if (a.profile == "fixed") RefuseOthers(a.profile, all, {&a.speed, &a.precision});
  if (a.profile == "fixed" && a.speed.given() == a.precision.given()) {
    throw UsageError("--profile fixed: one of --speed and --precision is expected");
  }
  RunClassic(a.ends, a.plan, PlannerOf(a));
}

}  // namespace

void AddLine(CLI::App& app, const SharedArm& arm) {
  const auto arguments = std::make_shared<LineArguments>();
  CLI::App* line = app.add_subcommand(
      "line", "Straight line of the tool, one point per control cycle, judged by the arm's limits");
  arguments->ends.AddTo(*line);
  line->add_option("--profile", arguments->profile,
                   "fixed: equal steps; ramp: the step grows, cruises and falls;\n"
                   "s-curve: the first phase of a jerk-limited line")
      ->check(CLI::IsMember({"fixed", "ramp", "s-curve"}))
      ->capture_default_str();
  arguments->speed.AddTo(*line, "--speed", "N",
                         "whole number; fixed: steps of 0.00004 m a unit (0.008 m/s in cycles of\n"
                         "0.005 s); ramp: cruise steps of 0.00002 m a unit (0.004 m/s), one unit\n"
                         "more or less from cycle to cycle on the ramps");
  arguments->precision.AddTo(*line, "--precision", "N",
                             "fixed, in place of --speed: steps of 0.0002 m a unit");
  arguments->acc.AddTo(*line, "--acc", "N", "s-curve: acceleration limit [m/s^2; --mm: mm/s^2]");
  arguments->jerk.AddTo(*line, "--jerk", "N", "s-curve: jerk limit [m/s^3; --mm: mm/s^3]");
  arguments->motor_rpm.AddTo(*line, "--motor-rpm", "N", "s-curve: motor speed limit [rpm]");
  arguments->plan.AddTo(*line, arm);
  line->footer(
      "On the line every joint has to stand within 170 degrees, whatever the arm's own limits.\n"
      "Example: qal line --from 0 0.3 0.2 0 1 0 --by 0 0.3 0 --speed 50 --csv line.csv");
  line->callback([arguments] { RunLine(*arguments); });
}

}  // namespace qal::tools
