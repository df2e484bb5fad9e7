#include "trajectory_file.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <set>

#include "../../io/error.h"
#include "../../io/files.h"
#include "trajectory_csv.h"
#include "trajectory_json.h"

namespace qal::tools {

using namespace io;

const std::vector<std::string> kFormatNames = {"csv", "json", "ros"};

FileFormat FormatOf(const std::string& name, const std::string& path, const std::string& option) {
  const std::string ending = std::filesystem::path(path).extension();
  if (name == "csv" || (name.empty() && ending == ".csv")) return FileFormat::kCsv;
  if (name == "json" || (name.empty() && ending == ".json")) return FileFormat::kJson;
  if (name == "ros" || (name.empty() && (ending == ".yaml" || ending == ".yml"))) {
    return FileFormat::kRos;
  }
  throw UsageError(
      fmt::format("{}: the name tells no format; .csv, .json, .yaml or .yml, or {} csv, json or "
                  "ros was expected",
                  path, option));
}

void TrajectoryInput::AddTo(CLI::App& command, const std::string& name) {
  command.add_option(name, path_, "trajectory to read; -: standard input")->required();
  command.add_option("--from", format_, "format of " + name + " (default: by its ending)")
      ->check(CLI::IsMember(kFormatNames));
  command
      .add_option("--joint-names", names_,
                  "names of joints 1 to 6 in ROS files, with commas between (default: joint_1 to "
                  "joint_6)")
      ->delimiter(',')
      ->type_name("A,B,C,D,E,F");
}

LocatedTrajectory TrajectoryInput::Read() const {
  const FileFormat format = FormatOf(format_, path_, "--from");
  if (std::set<std::string>(names_.begin(), names_.end()).size() != names_.size()) {
    throw UsageError("--joint-names: a name stands twice");
  }
  const std::string text = ReadFile(path_ == "-" ? "/dev/stdin" : path_);
  try {
    switch (format) {
      case FileFormat::kCsv:
        return ParseCsv(text);
      case FileFormat::kJson:
        return ParseJson(text);
      case FileFormat::kRos:
        break;
    }
    return ParseRosYaml(text, names_);
  } catch (const UsageError& error) {
    throw UsageError(fmt::format("{}: {}", name(), error.what()));
  }
}

std::string Place(const LocatedTrajectory& trajectory, size_t sample) {
  if (trajectory.lines.empty()) return fmt::format("sample {}", sample);
  return fmt::format("sample {} (line {})", sample, trajectory.lines[sample]);
}

}  // namespace qal::tools
