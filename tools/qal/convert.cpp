#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "../../io/error.h"
#include "commands.h"
#include "pose_option.h"
#include "trajectory_input.h"
#include "trajectory_output.h"

namespace qal::tools {

using namespace io;

namespace {

struct ConvertArguments {
  TrajectoryInput in;
  SharedArm arm;
  TrajectoryOutput out;
  bool fk = false;
};

void RequireIncreasingTimes(const LocatedTrajectory& trajectory, const std::string& name) {
  const FileTrajectory& samples = trajectory.samples;
  for (size_t i = 1; i < samples.size(); ++i) {
    if (samples[i].time_s > samples[i - 1].time_s) continue;
    throw UsageError(fmt::format("{}: {}: the time {:.9g} s is not after the one before, {:.9g} s",
                                 name, Place(trajectory, i), samples[i].time_s,
                                 samples[i - 1].time_s));
  }
}

void AddPoses(FileTrajectory& trajectory, const Arm& arm) {
  for (size_t i = 0; i < trajectory.size(); ++i) {
    if (trajectory[i].pose) continue;
    try {
      trajectory[i].pose = StateAt(arm, trajectory[i].joints).pose;
    } catch (const Failure& failure) {
      throw Failure(fmt::format("sample {}: {}", i, failure.what()));
    }
  }
}

void RunConvert(const ConvertArguments& arguments) {
  arguments.out.Check();
  const LoadedArm loaded = arguments.arm->Load();
  LocatedTrajectory read = arguments.in.Read(loaded.arm);
  RequireIncreasingTimes(read, arguments.in.name());
  if (arguments.fk) AddPoses(read.samples, loaded.arm);
  arguments.out.Write(read.samples, loaded.arm, arguments.in.Names(loaded.arm));
}

}  // namespace

void AddConvert(CLI::App& app, const SharedArm& arm) {
  const auto arguments = std::make_shared<ConvertArguments>();
  CLI::App* convert = app.add_subcommand(
      "convert", "Convert a trajectory between CSV, JSON and a ROS JointTrajectory in YAML");
  arguments->in.AddTo(*convert, "IN");
  arguments->out.AddTo(*convert, "OUT")->required();
  arguments->arm = arm;
  arm->AddTo(*convert);
  convert->add_flag("--fk", arguments->fk,
                    "give samples without a pose that of their joints, by forward kinematics");
  convert->footer(
      "Numbers read back to the same double; a ROS file holds its times in whole nanoseconds, and "
      "no\npose. Speeds and accelerations in a file are kept as they are. Where there are none, "
      "--full\nand ROS files have differences of the joints: with --full the mean speeds since the "
      "row\nbefore, and the accelerations from these to the next row's, from rest and to rest; in "
      "a "
      "ROS\nfile those at the samples themselves, 0 velocity at both ends. Read again, such "
      "differences\nare not taken for speeds that somebody planned.\n"
      "Example: qal convert planned.csv planned.yaml");
  convert->callback([arguments] { RunConvert(*arguments); });
}

}  // namespace qal::tools
