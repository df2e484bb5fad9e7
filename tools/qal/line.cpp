#include <CLI/CLI.hpp>
#include <memory>

#include "../../io/error.h"
#include "commands.h"
#include "line_plan.h"
#include "move.h"

namespace qal::tools {

using namespace io;

namespace {

struct LineArguments {
  Ends ends;
  std::string profile = "ramp";
  Numbers speed;
  Numbers precision;
  Numbers acc;
  Numbers jerk;
  Numbers motor_rpm;
  Units units;
  Output output;
};

// What an acceleration or a jerk may be in metres: far around any arm's, well inside a float.
float ReadLimit(const Numbers& option, const Units& units) {
  const double limit = units.Metres(option.ReadWithin(units.Length(1e-6), units.Length(1e6)));
  return static_cast<float>(limit);
}

std::vector<RoadPoint> Plan(const LineArguments& a, Move& move) {
  if (a.profile == "s-curve") {
    const SCurveLimits limits{ReadLimit(a.acc, a.units), ReadLimit(a.jerk, a.units),
                              a.motor_rpm.ReadWhole(1, kMostSetting)};
    SolveEnd(move, a.units);
    return PlanSCurveLine(move, limits, a.units);
  }
  if (a.precision.given()) return PlanFineLine(move, a.precision.ReadWithin(1e-6, 1e6), a.units);
  const int speed = a.speed.ReadWhole(1, kMostSetting);
  return a.profile == "ramp" ? PlanRampedLine(move, speed, a.units)
                             : PlanFixedLine(move, speed, a.units);
}

void RunLine(const LineArguments& a) {
  const std::initializer_list<const Numbers*> all = {&a.speed, &a.precision, &a.acc, &a.jerk,
                                                     &a.motor_rpm};
  if (a.profile == "s-curve") RefuseOthers(a.profile, all, {&a.acc, &a.jerk, &a.motor_rpm});
  if (a.profile == "ramp") RefuseOthers(a.profile, all, {&a.speed});
  if (a.profile == "fixed") RefuseOthers(a.profile, all, {&a.speed, &a.precision});
  if (a.profile == "fixed" && a.speed.given() == a.precision.given()) {
    throw UsageError("--profile fixed: one of --speed and --precision is expected");
  }
  RunMove(a.ends, a.units, a.output, [&a](Move& move) { return Plan(a, move); });
}

}  // namespace

void AddLine(CLI::App& app) {
  const auto arguments = std::make_shared<LineArguments>();
  CLI::App* line = app.add_subcommand(
      "line", "Straight line of the tool, one point per control cycle of 0.005 s");
  arguments->ends.AddTo(*line);
  line->add_option("--profile", arguments->profile,
                   "fixed: equal steps; ramp: the step grows, cruises and falls;\n"
                   "s-curve: the first phase of a jerk-limited line")
      ->check(CLI::IsMember({"fixed", "ramp", "s-curve"}))
      ->capture_default_str();
  arguments->speed.AddTo(*line, "--speed", "N",
                         "whole number; fixed: steps of 0.00004 m a unit (0.008 m/s);\n"
                         "ramp: cruise steps of 0.00002 m a unit (0.004 m/s), one unit more or\n"
                         "less from cycle to cycle on the ramps");
  arguments->precision.AddTo(*line, "--precision", "N",
                             "fixed, in place of --speed: steps of 0.0002 m a unit");
  arguments->acc.AddTo(*line, "--acc", "N", "s-curve: acceleration limit [m/s^2; --mm: mm/s^2]");
  arguments->jerk.AddTo(*line, "--jerk", "N", "s-curve: jerk limit [m/s^3; --mm: mm/s^3]");
  arguments->motor_rpm.AddTo(*line, "--motor-rpm", "N", "s-curve: motor speed limit [rpm]");
  arguments->units.AddTo(*line);
  arguments->output.AddTo(*line);
  line->footer("Example: qal line --from 0 0.3 0.2 0 1 0 --by 0 0.3 0 --speed 50 --csv line.csv");
  line->callback([arguments] { RunLine(*arguments); });
}

}  // namespace qal::tools
