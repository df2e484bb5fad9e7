#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "../../io/error.h"
#include "../common/values.h"
#include "limited.h"
#include "line_arguments.h"

namespace qal::tools {

void LineArguments::AddTo(CLI::App& line, const SharedArm& arm) {
  ends.AddTo(line);
  TakesOneOf(
      line.add_option(
          "--profile", profile,
          "how the tool moves:\n"
          "limited: the quickest line within every limit of tool and joints\n"
          "fixed: equal steps; begins and ends with a whole one, and keeps no limit\n"
          "ramp: the step grows, cruises and falls; jumps to the end, keeps no joint's limit\n"
          "s-curve: the first phase of a jerk-limited line alone, up to twice --motor-rpm"),
      {"limited", "fixed", "ramp", "s-curve"})
      ->capture_default_str();
  speed.AddTo(line, "--speed", "N",
              "limited: the tool's speed at most [m/s; --mm: mm/s]\n"
              "fixed: steps of 0.00004 m a unit, a whole number (0.008 m/s in cycles of 0.005 s)\n"
              "ramp: cruise steps of 0.00002 m a unit, a whole number (0.004 m/s), one unit more\n"
              "or less from cycle to cycle on the ramps");
  acc.AddTo(line, "--acc", "N", "limited, s-curve: acceleration at most [m/s^2; --mm: mm/s^2]");
  jerk.AddTo(line, "--jerk", "N", "limited, s-curve: jerk at most [m/s^3; --mm: mm/s^3]");
  turn_speed.AddTo(line, "--turn-speed", "N",
                   "limited: the tool's turn at most [rad/s; --deg: deg/s]");
  turn_acc.AddTo(line, "--turn-acc", "N", "limited: its acceleration [rad/s^2; --deg: deg/s^2]");
  turn_jerk.AddTo(line, "--turn-jerk", "N", "limited: its jerk [rad/s^3; --deg: deg/s^3]");
  AddScale(scale, line);
  max_orientation_error.AddTo(
      line, "--max-orientation-error", "N",
      "limited: how far the tool may be turned off the line where that gets it past a wrist\n"
      "singularity without slowing down [rad; --deg: deg] (0: not at all)");
  precision.AddTo(line, "--precision", "N", "fixed, in place of --speed: steps of 0.0002 m a unit");
  motor_rpm.AddTo(line, "--motor-rpm", "N", "s-curve: motor speed limit [rpm]");
  plan.AddTo(line, arm);
}

void LineArguments::Check() const {
  const auto refuse_all_but = [this](std::initializer_list<const NumberOption*> taken) {
    RefuseOthers(profile,
                 {&speed, &acc, &jerk, &turn_speed, &turn_acc, &turn_jerk, &scale,
                  &max_orientation_error, &precision, &motor_rpm},
                 taken);
  };
  if (limited()) {
    refuse_all_but(
        {&speed, &acc, &jerk, &turn_speed, &turn_acc, &turn_jerk, &scale, &max_orientation_error});
  }
  if (profile == "s-curve") refuse_all_but({&acc, &jerk, &motor_rpm});
  if (profile == "ramp") refuse_all_but({&speed});
  if (profile != "fixed") return;
  refuse_all_but({&speed, &precision});
  if (speed.given() == precision.given()) {
    throw io::UsageError("--profile fixed: one of --speed and --precision is expected");
  }
}

void AddLine(CLI::App& app, const SharedArm& arm) {
  const auto arguments = std::make_shared<LineArguments>();
  CLI::App* line = app.add_subcommand(
      "line", "Straight line of the tool, one point per control cycle, judged by the arm's limits");
  arguments->AddTo(*line, arm);
  const LineLimits limits;
  line->footer(
      fmt::format(
          "Of the limited profile the tool has at most {:g} m/s, {:g} m/s^2 and {:g} m/s^3, and "
          "turns with\n{:g} rad/s, {:g} rad/s^2 and {:g} rad/s^3, where nothing else is said.\n",
          limits.speed_m_s, limits.acceleration_m_s2, limits.jerk_m_s3, limits.turn_speed_rad_s,
          limits.turn_acceleration_rad_s2, limits.turn_jerk_rad_s3) +
      "It keeps the arm's own limits, and the tool may turn on the way. With the\n"
      "others it keeps its orientation (the s-curve alone turns it), and every joint has to stand\n"
      "within 170 degrees, whatever the arm's limits.\n"
      "Example: qal line --from 0 0.3 0.2 0 1 0 --by 0 0.3 0 --speed 0.2 --csv line.csv");
  line->callback([arguments] {
    arguments->Check();
    arguments->limited() ? RunLimitedLine(*arguments) : RunClassicLine(*arguments);
  });
}

}  // namespace qal::tools
