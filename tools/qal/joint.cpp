#include <fmt/format.h>
#include <qal/solve/kinematics.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "../../io/error.h"
#include "commands.h"
#include "move.h"

namespace qal::tools {

using namespace io;

namespace {

struct JointArguments {
  EndOptions ends;
  std::string profile = "trapezoid";
  NumberOption speed;
  NumberOption acc;
  PlanOptions plan;
};

// The end of the move; of a pose, the joints nearest the start's.
State EndOf(const Arm& arm, const classic::Ends& ends, const Units& units) {
  if (ends.end_joints) return {*ends.end_joints, ends.end};
  const Result<State> solved = Nearest(arm, ends.end, ends.start.joints);
  if (solved) return *solved;
  throw Failure(fmt::format("no solution at the end, {}: {}", PoseText(ends.end, units),
                            ErrorText(solved.error(), units.text())));
}

Planner PlannerOf(const JointArguments& a) {
  const Units& units = a.plan.common.units;
  if (a.profile == "trapezoid") {
    const int percent = a.speed.ReadWhole(1, 100);
    const int acc = a.acc.ReadWhole(1, kMostSetting);
    return [percent, acc, &units](const Arm& arm, const classic::Ends& ends, const auto& listener) {
      return classic::TrapezoidMove(arm, ends.start, EndOf(arm, ends, units), percent, acc,
                                    listener);
    };
  }
  const bool ramps = a.profile == "ramp";
  const int speed = a.speed.ReadWhole(ramps ? 2 : 1, kMostSetting);
  const auto plan = ramps ? classic::RampedMove : classic::FixedMove;
  return [plan, speed, &units](const Arm& arm, const classic::Ends& ends, const auto& listener) {
    return plan(arm, ends.start, EndOf(arm, ends, units), speed, listener);
  };
}

void RunJoint(const JointArguments& a) {
  if (a.profile != "trapezoid") RefuseOthers(a.profile, {&a.acc}, {});
  RunMove(a.ends, a.plan, PlannerOf(a));
}

}  // namespace

void AddJoint(CLI::App& app, const SharedArm& arm) {
  const auto arguments = std::make_shared<JointArguments>();
  CLI::App* joint = app.add_subcommand(
      "joint",
      "Joint move, all joints at once, one point per control cycle, judged by the arm's limits");
  arguments->ends.AddTo(*joint);
  joint
      ->add_option("--profile", arguments->profile,
                   "fixed: equal steps; ramp: the leading joint's step grows, cruises and falls;\n"
                   "trapezoid: every joint by its motor's speed, all arriving together")
      ->check(CLI::IsMember({"fixed", "ramp", "trapezoid"}))
      ->capture_default_str();
  arguments->speed.AddTo(*joint, "--speed", "N",
                         "whole number; fixed: steps of 0.01 deg a unit; ramp: cruise steps of\n"
                         "0.01 deg for two units, 0.01 deg more or less from cycle to cycle on\n"
                         "the ramps; trapezoid: motor speed [% of the motors' full speed]");
  arguments->acc.AddTo(*joint, "--acc", "N",
                       "trapezoid: motor acceleration, a whole number [rpm/s]");
  arguments->plan.AddTo(*joint, arm);
  joint->footer(
      "Example: qal joint --from 0 0 0 0 1.2 0 --to 0.6 0.3 0.2 0 1 0 --speed 50 --acc 10000");
  joint->callback([arguments] { RunJoint(*arguments); });
}

}  // namespace qal::tools
