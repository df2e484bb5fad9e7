#include <fmt/format.h>
#include <qal/plan/joint_move.h>
#include <qal/plan/sampled.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "../../io/error.h"
#include "../../io/plan_text.h"
#include "commands.h"
#include "limited.h"
#include "move.h"

namespace qal::tools {

using namespace io;

namespace {

struct JointArguments {
  EndOptions ends;
  std::string profile = "limited";
  NumberOption scale;
  NumberOption speed;
  NumberOption acc;
  PlanOptions plan;
};

void RunLimited(const JointArguments& a) {
  const Units& units = a.plan.common.units;
  const LoadedArm loaded = a.plan.common.arm->Load();
  const classic::Ends ends = a.ends.Read(units, loaded.arm);
  const State end = EndOf(loaded.arm, ends, units);
  const auto or_fail = [&units](auto planned) {
    if (planned) return *std::move(planned);
    throw Failure(PlanFailureText(planned.error(), "move", units.text()));
  };
  const JointMotion motion =
      or_fail(PlanJoint(loaded.arm, {ends.start.joints}, {end.joints}, {ReadScale(a.scale)}));
  WriteLimited(a.plan, loaded, {or_fail(Sampled(loaded.arm, motion)), motion.bindings()}, "",
               Json::object());
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
  const std::initializer_list<const NumberOption*> all = {&a.scale, &a.speed, &a.acc};
  if (a.profile == "limited") {
    RefuseOthers(a.profile, all, {&a.scale});
    return RunLimited(a);
  }
  if (a.profile == "trapezoid") {
    RefuseOthers(a.profile, all, {&a.speed, &a.acc});
  } else {
    RefuseOthers(a.profile, all, {&a.speed});
  }
  RunClassic(a.ends, a.plan, PlannerOf(a));
}

}  // namespace

void AddJoint(CLI::App& app, const SharedArm& arm) {
  const auto arguments = std::make_shared<JointArguments>();
  CLI::App* joint = app.add_subcommand(
      "joint",
      "Joint move, all joints at once, one point per control cycle, judged by the arm's limits");
  arguments->ends.AddTo(*joint);
  joint
      ->add_option(
          "--profile", arguments->profile,
          "limited: the quickest move within every joint's velocity, acceleration and jerk\n"
          "fixed: equal steps; begins and ends with a whole one, and keeps no limit\n"
          "ramp: the leading joint's step grows, cruises and falls; keeps no limit\n"
          "trapezoid: every joint by its motor's speed, all arriving together; may exceed\n"
          "speed and acceleration, and has steps of acceleration")
      ->check(CLI::IsMember({"limited", "fixed", "ramp", "trapezoid"}))
      ->capture_default_str();
  AddScale(arguments->scale, *joint);
  arguments->speed.AddTo(*joint, "--speed", "N",
                         "whole number; fixed: steps of 0.01 deg a unit; ramp: cruise steps of\n"
                         "0.01 deg for two units, 0.01 deg more or less from cycle to cycle on\n"
                         "the ramps; trapezoid: motor speed [% of the motors' full speed]");
  arguments->acc.AddTo(*joint, "--acc", "N",
                       "trapezoid: motor acceleration, a whole number [rpm/s]");
  arguments->plan.AddTo(*joint, arm);
  joint->footer(
      "Example: qal joint --from 0 0 0 0 1.2 0 --to 0.6 0.3 0.2 0 1 0 --scale 50 --csv move.csv");
  joint->callback([arguments] { RunJoint(*arguments); });
}

}  // namespace qal::tools
