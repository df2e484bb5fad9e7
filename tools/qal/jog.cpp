#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "../../io/error.h"
#include "../common/values.h"
#include "commands.h"
#include "move.h"
#include "pose_option.h"

namespace qal::tools {

using namespace io;

namespace {

struct JogArguments {
  NumberOption joints;
  NumberOption step;
  std::string frame = "base";
  std::string axis;
  PlanOptions plan;
};

const std::vector<std::string> kAxes = {"x", "y", "z", "rx", "ry", "rz"};

void RunJog(const JogArguments& arguments) {
  const Units& units = arguments.plan.common.units;
  const LoadedArm loaded = arguments.plan.common.arm->Load();
  const State current = StateAt(loaded.arm, ReadArmJoints(arguments.joints, units, loaded.arm));
  const bool turns = arguments.axis.size() == 2;
  const char* const unit = turns ? units.angle() : units.length();
  const double given = arguments.step.Read(1, fmt::format("one number [{}]", unit))[0];
  const double step = turns ? units.Radians(given) : units.Metres(given);
  turns ? units.NoteAngle(step, "--step") : units.NoteLength(step, "--step");
  const auto axis = static_cast<classic::Axis>(arguments.axis.back() - 'x');
  const auto frame = arguments.frame == "tool" ? classic::Frame::kTool : classic::Frame::kBase;
  const auto jogged =
      classic::Jog(loaded.arm, current, {frame, axis, turns, step}, arguments.plan.Listener());
  if (!jogged) {
    throw Failure(fmt::format("no solution for {:.9g} {} {} {} of the {} frame from {}: {}", given,
                              unit, turns ? "about" : "along", arguments.axis.back(),
                              arguments.frame, PoseText(current.pose, units),
                              ErrorText(jogged.error().error, units.text())));
  }
  WritePlan(arguments.plan, loaded, FromStates({current, *jogged}, loaded.arm.cycle_s().value),
            StateRows(*jogged, units), StateJson(*jogged));
}

}  // namespace

void AddJog(CLI::App& app, const SharedArm& arm) {
  const auto arguments = std::make_shared<JogArguments>();
  CLI::App* jog = app.add_subcommand(
      "jog", "One step along or about an axis, in one control cycle, judged by the arm's limits");
  arguments->joints.AddTo(*jog, "--joints", kJointsShape, kJointsHelp);
  TakesOneOf(jog->add_option("--axis", arguments->axis, "x y z: along; rx ry rz: about"), kAxes)
      ->required();
  arguments->step.AddTo(*jog, "--step", "N",
                        "signed length [m; --mm: mm] or angle [rad; --deg: deg]");
  TakesOneOf(jog->add_option("--frame", arguments->frame,
                             "frame of the axis, which goes through the tool"),
             {"base", "tool"})
      ->capture_default_str();
  arguments->plan.AddTo(*jog, arm);
  jog->footer(
      "The step is judged as a plan of two points, from rest to rest in one cycle. Every joint "
      "has\n"
      "to stand within 170 degrees, whatever the arm's own limits.\n"
      "Example: qal jog --joints 0 0.3 -0.2 0 0.5 0 --frame tool --axis z --step -0.002");
  jog->callback([arguments] { RunJog(*arguments); });
}

}  // namespace qal::tools
