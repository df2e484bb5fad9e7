#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <memory>

#include "../../io/error.h"
#include "../../src/kinematics/ikfunc.h"
#include "../../src/kinematics/solve/inverse.h"
#include "../common/library_lines.h"
#include "agreement.h"
#include "commands.h"
#include "output.h"

namespace qal::tools {

using namespace io;

namespace {

struct JogArguments {
  Numbers joints;
  Numbers step;
  std::string frame = "base";
  std::string axis;
  Units units;
  Output output;
};

// In the order of the library's move modes.
const std::vector<std::string> kAxes = {"x", "y", "z", "rx", "ry", "rz"};
constexpr int kFirstRotation = 3;

RoadPoint Jog(const JogArguments& arguments) {
  const Units& units = arguments.units;
  RoadPoint current = AtJoints(ReadArmJoints(arguments.joints, units));
  const int mode =
      static_cast<int>(std::find(kAxes.begin(), kAxes.end(), arguments.axis) - kAxes.begin());
  const bool turns = mode >= kFirstRotation;
  const bool tool = arguments.frame == "tool";
  if (turns && !tool) {
    throw UsageError(fmt::format("--axis {}: turns are about the tool's axes, with --frame tool",
                                 arguments.axis));
  }
  const char* const unit = turns ? units.angle() : units.length();
  const double given = arguments.step.Read(1, fmt::format("one number [{}]", unit))[0];
  const double step = turns ? units.Radians(given) : units.Metres(given);
  RoadPoint result;
  if (!Ikfunc::ArmIk(current, tool ? 1 : 0, mode, step, result)) {
    throw Failure(fmt::format(
        "no solution for {} {} along {} of the {} frame from {}: out of reach, or a joint would "
        "leave its range of +-{:.6g} {} or move more than {:.6g} {}",
        given, unit, arguments.axis, arguments.frame, PoseText(current, units),
        units.Angle(kJointRangeRad), units.angle(), units.Angle(std::fabs(step) * kJogStepFactor),
        units.angle()));
  }
  return result;
}

void RunJog(const JogArguments& arguments) {
  const RoadPoint point = [&arguments] {
    const LibraryLines lines;
    return Jog(arguments);
  }();
  arguments.output.WritePoint(point, arguments.units);
}

}  // namespace

void AddJog(CLI::App& app) {
  const auto arguments = std::make_shared<JogArguments>();
  CLI::App* jog = app.add_subcommand("jog", "One step along or about an axis, joints solved");
  arguments->joints.AddTo(*jog, "--joints", kJointsShape, kJointsHelp);
  jog->add_option("--axis", arguments->axis, "x y z: along; rx ry rz: about, with --frame tool")
      ->required()
      ->check(CLI::IsMember(kAxes));
  arguments->step.AddTo(*jog, "--step", "N",
                        "signed length [m; --mm: mm] or angle [rad; --deg: deg]");
  jog->add_option("--frame", arguments->frame, "frame of the axis")
      ->check(CLI::IsMember({"base", "tool"}))
      ->capture_default_str();
  arguments->units.AddTo(*jog);
  arguments->output.AddTo(*jog);
  jog->footer("Example: qal jog --joints 0 0.3 -0.2 0 0.5 0 --frame tool --axis z --step -0.002");
  jog->callback([arguments] { RunJog(*arguments); });
}

}  // namespace qal::tools
