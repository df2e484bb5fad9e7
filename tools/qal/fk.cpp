#include <qal/solve/kinematics.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "../../io/error.h"
#include "../../io/trajectory_csv.h"
#include "../common/values.h"
#include "commands.h"
#include "output.h"
#include "point_file.h"
#include "pose_option.h"

namespace qal::tools {

using namespace io;

namespace {

struct FkArguments {
  NumberOption joints;
  std::string file;
  CommonOptions common;
};

void RunFk(const FkArguments& arguments) {
  const auto& [arm_option, units, output] = arguments.common;
  if (arguments.joints.given() && !arguments.file.empty()) {
    throw UsageError("--joints does not go with --file");
  }
  const LoadedArm loaded = arm_option->Load();
  if (!arguments.file.empty()) {
    return SolveFile(arguments.file, PointKind::kJoints, loaded, arguments.common,
                     [&arm = loaded.arm](const FileSample& row) -> Result<State> {
                       const Result<Pose> pose = Forward(arm, row.joints);
                       if (!pose) return pose.error();
                       return State{row.joints, *pose};
                     });
  }
  const State state = StateAt(loaded.arm, ReadJoints(arguments.joints, units));
  Json json = {{"arm", ArmJson(loaded)}};
  json.update(StateJson(state));
  output.Write(output.json() ? json.dump(2) + '\n' : ArmRow(loaded) + StateRows(state, units),
               [&state] {
                 return ToCsv({{0.0, state.joints, state.pose}});
               });
}

}  // namespace

void AddFk(CLI::App& app, const SharedArm& arm) {
  const auto arguments = std::make_shared<FkArguments>();
  CLI::App* fk = app.add_subcommand("fk", "Forward kinematics: the pose of six joint angles");
  arguments->joints.AddTo(*fk, "--joints", kJointsShape, kJointsHelp);
  TakesFile(fk->add_option(
                "--file", arguments->file,
                "a CSV file of joints in place of --joints, with the columns q1_rad to q6_rad;\n"
                "-: standard input"),
            kPointFiles);
  arguments->common.AddTo(*fk, arm, false);
  fk->footer(
      "Exit status: 0 done, 1 when there is no pose of a row.\n"
      "Example: qal fk --joints 0 0.3 -0.2 0 0.5 0");
  fk->callback([arguments] { RunFk(*arguments); });
}

}  // namespace qal::tools
