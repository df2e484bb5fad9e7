#include <CLI/CLI.hpp>
#include <memory>

#include "../common/library_lines.h"
#include "agreement.h"
#include "commands.h"
#include "output.h"

namespace qal::tools {

namespace {

struct FkArguments {
  Numbers joints;
  Units units;
  Output output;
};

void RunFk(const FkArguments& arguments) {
  const Joints joints = ReadJoints(arguments.joints, arguments.units);
  const RoadPoint point = [&joints] {
    const LibraryLines lines;
    return AtJoints(joints);
  }();
  arguments.output.WritePoint(point, arguments.units);
}

}  // namespace

void AddFk(CLI::App& app) {
  const auto arguments = std::make_shared<FkArguments>();
  CLI::App* fk = app.add_subcommand("fk", "Forward kinematics: the pose of six joint angles");
  arguments->joints.AddTo(*fk, "--joints", kJointsShape, kJointsHelp);
  arguments->units.AddTo(*fk);
  arguments->output.AddTo(*fk);
  fk->footer("Example: qal fk --joints 0 0.3 -0.2 0 0.5 0");
  fk->callback([arguments] { RunFk(*arguments); });
}

}  // namespace qal::tools
