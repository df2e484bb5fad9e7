#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "../../io/error.h"
#include "../../src/kinematics/ikfunc.h"
#include "../../src/kinematics/trajectory/joint_move.h"
#include "commands.h"
#include "move.h"

namespace qal::tools {

using namespace io;

namespace {

struct JointArguments {
  Ends ends;
  std::string profile = "trapezoid";
  Numbers speed;
  Numbers acc;
  Units units;
  Output output;
};

std::vector<RoadPoint> PlanFixed(const Move& move, int speed) {
  const int count = Ikfunc::CountCurvelLineSize(move.start, move.end, speed);
  std::vector<RoadPoint> points(static_cast<size_t>(count), move.start);
  if (!Ikfunc::CountCurveLineToBuffer(move.start, move.end, count, points.data())) {
    throw Failure("the library refuses the move");
  }
  return points;
}

std::vector<RoadPoint> PlanRamp(const Move& move, int speed) {
  std::vector<RoadPoint> points;
  if (!Ikfunc::CountCurvelLineToBuffer(move.start, move.end, &points, speed)) {
    throw Failure("the library refuses the move");
  }
  return points;
}

std::vector<RoadPoint> PlanTrapezoid(const Move& move, int percent, int acc) {
  std::vector<RoadPoint> points;
  if (!Ikfunc::CountRunCurvelLineToBuffer(move.start, move.end, &points, percent, acc)) {
    throw Failure(
        fmt::format("the move takes {} cycles at --speed {} --acc {}, at most {} are planned",
                    Ikfunc::CountRunCurvelLineSize(move.start, move.end, percent, acc), percent,
                    acc, kLongestRunCycles));
  }
  return points;
}

std::vector<RoadPoint> Plan(const JointArguments& a, Move& move) {
  SolveEnd(move, a.units);
  if (a.profile == "trapezoid") {
    const int percent = a.speed.ReadWhole(1, 100);
    return PlanTrapezoid(move, percent, a.acc.ReadWhole(1, kMostSetting));
  }
  if (a.profile == "fixed") return PlanFixed(move, a.speed.ReadWhole(1, kMostSetting));
  return PlanRamp(move, a.speed.ReadWhole(2, kMostSetting));
}

void RunJoint(const JointArguments& a) {
  if (a.profile != "trapezoid") RefuseOthers(a.profile, {&a.acc}, {});
  RunMove(a.ends, a.units, a.output, [&a](Move& move) { return Plan(a, move); });
}

}  // namespace

void AddJoint(CLI::App& app) {
  const auto arguments = std::make_shared<JointArguments>();
  CLI::App* joint = app.add_subcommand(
      "joint", "Joint move, all joints at once, one point per control cycle of 0.005 s");
  arguments->ends.AddTo(*joint);
  joint
      ->add_option("--profile", arguments->profile,
                   "fixed: equal steps; ramp: the leading joint's step grows, cruises and falls;\n"
                   "trapezoid: every joint within its motor's limits, all arriving together")
      ->check(CLI::IsMember({"fixed", "ramp", "trapezoid"}))
      ->capture_default_str();
  arguments->speed.AddTo(*joint, "--speed", "N",
                         "whole number; fixed: steps of 0.01 deg a unit; ramp: cruise steps of\n"
                         "0.01 deg for two units, 0.01 deg more or less from cycle to cycle on\n"
                         "the ramps; trapezoid: motor speed limit [% of 3000 rpm]");
  arguments->acc.AddTo(*joint, "--acc", "N",
                       "trapezoid: motor acceleration limit, a whole number [rpm/s]");
  arguments->units.AddTo(*joint);
  arguments->output.AddTo(*joint);
  joint->footer(
      "Example: qal joint --from 0 0 0 0 1.2 0 --to 0.6 0.3 0.2 0 1 0 --speed 50 --acc 10000");
  joint->callback([arguments] { RunJoint(*arguments); });
}

}  // namespace qal::tools
