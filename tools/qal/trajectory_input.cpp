#include "trajectory_input.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <set>

#include "../../io/error.h"
#include "../../io/messages.h"
#include "number_option.h"

namespace qal::tools {

using namespace io;

void TrajectoryInput::AddTo(CLI::App& command, const std::string& name, const std::string& what,
                            const std::string& endings) {
  TakesFile(command.add_option(name, path_, what + " to read; -: standard input"), endings)
      ->required();
  TakesOneOf(
      command.add_option("--from", format_, "format of " + name + " (default: by its content)"),
      kFormatNames);
  command
      .add_option("--joint-names", names_,
                  "names of joints 1 to 6 in ROS files (default: those of the arm, or,\n"
                  "in a file with six other joints, these in their order)")
      ->type_name("A B C D E F");
}

JointNames TrajectoryInput::Names(const Arm& arm) const {
  JointNames names = JointNamesOf(arm);
  if (names_.empty()) return names;
  const std::vector<std::string> given = SplitWords({names_});
  if (given.size() != names.size()) {
    throw UsageError(fmt::format("--joint-names: six names expected, {} given", given.size()));
  }
  std::copy(given.begin(), given.end(), names.begin());
  if (std::set<std::string>(names.begin(), names.end()).size() != names.size()) {
    throw UsageError("--joint-names: a name stands twice");
  }
  return names;
}

LocatedTrajectory TrajectoryInput::Read(const Arm& arm) const { return Read(arm, path_); }

LocatedTrajectory TrajectoryInput::Read(const Arm& arm, const std::string& path) const {
  LocatedTrajectory read =
      ReadTrajectory(path, FormatNamed(format_), {Names(arm), !names_.empty()});
  for (const std::string& note : read.notes) Note(NameOf(path) + ": " + note);
  return read;
}

}  // namespace qal::tools
