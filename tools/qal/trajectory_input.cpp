#include "trajectory_input.h"

#include <CLI/CLI.hpp>
#include <set>

#include "../../io/error.h"
#include "../../io/messages.h"

namespace qal::tools {

using namespace io;

void TrajectoryInput::AddTo(CLI::App& command, const std::string& name) {
  command.add_option(name, path_, "trajectory to read; -: standard input")->required();
  command.add_option("--from", format_, "format of " + name + " (default: by its content)")
      ->check(CLI::IsMember(kFormatNames));
  names_option_ =
      command
          .add_option(
              "--joint-names", names_,
              "names of joints 1 to 6 in ROS files, with commas between (default: joint_1 to "
              "joint_6,\nor, in a file with six other joints, these in their order)")
          ->delimiter(',')
          ->type_name("A,B,C,D,E,F");
}

LocatedTrajectory TrajectoryInput::Read() const {
  if (std::set<std::string>(names_.begin(), names_.end()).size() != names_.size()) {
    throw UsageError("--joint-names: a name stands twice");
  }
  LocatedTrajectory read =
      ReadTrajectory(path_, FormatNamed(format_), {names_, names_option_->count() > 0});
  for (const std::string& note : read.notes) Note(name() + ": " + note);
  return read;
}

}  // namespace qal::tools
