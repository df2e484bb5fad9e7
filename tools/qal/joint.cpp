#include <fmt/format.h>
#include <qal/plan/sampled.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "../../io/error.h"
#include "../../io/plan_text.h"
#include "../common/values.h"
#include "joint_arguments.h"
#include "limited.h"

namespace qal::tools {

using namespace io;

LimitedMove PlanLimitedMove(const JointArguments& a, const Arm& arm) {
  const Units& units = a.plan.common.units;
  const classic::Ends ends = a.ends.Read(units, arm);
  const State end = EndOf(arm, ends, units);
  const auto or_fail = [&units](auto planned) {
    if (planned) return *std::move(planned);
    throw Failure(RefusalText(planned.error(), "move", "joint", units));
  };
  const JointMotion motion =
      or_fail(PlanJoint(arm, {ends.start.joints}, {end.joints}, {ReadScale(a.scale)}));
  return {motion, or_fail(Sampled(arm, motion))};
}

Planner ClassicPlanner(const JointArguments& a) {
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

void JointArguments::AddTo(CLI::App& joint, const SharedArm& arm) {
  ends.AddTo(joint);
  TakesOneOf(joint.add_option(
                 "--profile", profile,
                 "how the joints move:\n"
                 "limited: the quickest move within every joint's velocity, acceleration and jerk\n"
                 "fixed: equal steps; begins and ends with a whole one, and keeps no limit\n"
                 "ramp: the leading joint's step grows, cruises and falls; keeps no limit\n"
                 "trapezoid: every joint by its motor's speed, all arriving together; may exceed\n"
                 "speed and acceleration, and has steps of acceleration"),
             {"limited", "fixed", "ramp", "trapezoid"})
      ->capture_default_str();
  AddScale(scale, joint);
  speed.AddTo(joint, "--speed", "N",
              "whole number; fixed: steps of 0.01 deg a unit; ramp: cruise steps of\n"
              "0.01 deg for two units, 0.01 deg more or less from cycle to cycle on\n"
              "the ramps; trapezoid: motor speed [% of the motors' full speed]");
  acc.AddTo(joint, "--acc", "N", "trapezoid: motor acceleration, a whole number [rpm/s]");
  plan.AddTo(joint, arm);
}

void JointArguments::Check() const {
  const std::initializer_list<const NumberOption*> all = {&scale, &speed, &acc};
  if (limited()) return RefuseOthers(profile, all, {&scale});
  if (profile == "trapezoid") return RefuseOthers(profile, all, {&speed, &acc});
  RefuseOthers(profile, all, {&speed});
}

namespace {

void RunJoint(const JointArguments& a) {
  a.Check();
  if (!a.limited()) return RunClassic(a.ends, a.plan, ClassicPlanner(a));
  const LoadedArm loaded = a.plan.common.arm->Load();
  const auto [motion, samples] = PlanLimitedMove(a, loaded.arm);
  WriteLimited(a.plan, loaded, {samples, motion.bindings()}, "", Json::object());
}

}  // namespace

void AddJoint(CLI::App& app, const SharedArm& arm) {
  const auto arguments = std::make_shared<JointArguments>();
  CLI::App* joint = app.add_subcommand(
      "joint",
      "Joint move, all joints at once, one point per control cycle, judged by the arm's limits");
  arguments->AddTo(*joint, arm);
  joint->footer(
      "Example: qal joint --from 0 0 0 0 1.2 0 --to 0.6 0.3 0.2 0 1 0 --scale 50 --csv move.csv");
  joint->callback([arguments] { RunJoint(*arguments); });
}

}  // namespace qal::tools
