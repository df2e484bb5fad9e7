#include "trajectory_output.h"

#include <CLI/CLI.hpp>

#include "../../io/error.h"
#include "../../io/files.h"
#include "../common/values.h"

namespace qal::tools {

using namespace io;

CLI::Option* TrajectoryOutput::AddTo(CLI::App& command, const std::string& name) {
  CLI::Option* path = TakesFile(
      command.add_option(name, path_, "file to write, whole or not at all; -: standard output"),
      kTrajectoryFiles);
  TakesOneOf(command.add_option("--to", to_,
                                "format of " + path->get_name() + " (default: by its ending)"),
             kFormatNames);
  TakesOneOf(command.add_option("--ros", ros_,
                                "what a YAML file is for:\n"
                                "message: a JointTrajectory for a topic (the default)\n"
                                "goal: the goal of the action FollowJointTrajectory"),
             {"message", "goal"});
  command.add_flag("--full", full_,
                   "with CSV: speeds, accelerations and the arm's motor speeds as well");
  return path;
}

void TrajectoryOutput::Check() const {
  const FileFormat format = Format();
  if (full_ && format != FileFormat::kCsv) {
    throw UsageError("--full: only a CSV file has these columns");
  }
  if (!ros_.empty() && format != FileFormat::kRos) {
    throw UsageError("--ros: only a YAML file is for ROS");
  }
}

void TrajectoryOutput::Write(const FileTrajectory& trajectory, const Arm& arm,
                             const JointNames& names) const {
  Check();
  const RosInterface ros = ros_ == "goal" ? RosInterface::kGoal : RosInterface::kMessage;
  const std::string text = TrajectoryText(trajectory, arm, Format(), {full_, ros, names});
  if (path_ == "-") {
    WriteStandardOutput(text);
  } else {
    WriteFile(path_, text);
  }
}

}  // namespace qal::tools
