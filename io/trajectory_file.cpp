#include "trajectory_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "document.h"
#include "error.h"
#include "files.h"
#include "limits.h"
#include "trajectory_csv.h"
#include "trajectory_json.h"

namespace qal::io {

const std::vector<std::string> kFormatNames = {"csv", "json", "ros"};

std::optional<FileFormat> FormatNamed(const std::string& name) {
  if (name == "csv") return FileFormat::kCsv;
  if (name == "json") return FileFormat::kJson;
  if (name == "ros") return FileFormat::kRos;
  return std::nullopt;
}

FileFormat FormatToWrite(const std::string& name, const std::string& path,
                         const std::string& option) {
  std::string ending = std::filesystem::path(path).extension();
  if (ending == ".yaml" || ending == ".yml") ending = ".ros";
  const auto format = FormatNamed(name.empty() && !ending.empty() ? ending.substr(1) : name);
  if (format) return *format;
  throw UsageError(
      fmt::format("{}: the name tells no format; .csv, .json, .yaml or .yml, or {} csv, json or "
                  "ros was expected",
                  path, option));
}

FileFormat FormatOf(std::string_view text) {
  if (ContentOf(text) == Content::kJson) return FileFormat::kJson;
  const std::string_view line = text.substr(0, text.find('\n'));
  // A header with another name for the time still is one; a line of YAML has a colon.
  const bool columns =
      line.find(',') != std::string_view::npos && line.find(':') == std::string_view::npos;
  return columns || line.find("time_s") != std::string_view::npos ? FileFormat::kCsv
                                                                  : FileFormat::kRos;
}

std::string TrajectoryText(const FileTrajectory& trajectory, const Arm& arm, FileFormat format,
                           const TrajectoryExtras& extras) {
  switch (format) {
    case FileFormat::kCsv:
      return extras.full ? ToFullCsv(trajectory, arm) : ToCsv(trajectory);
    case FileFormat::kJson:
      return ToJson(trajectory).dump() + '\n';
    case FileFormat::kRos:
      break;
  }
  return ToRosYaml(trajectory, extras.names, extras.ros);
}

namespace {

LocatedTrajectory ParseTrajectory(std::string_view text, FileFormat format, const RosNames& names) {
  switch (format) {
    case FileFormat::kCsv:
      return ParseCsv(text);
    case FileFormat::kJson:
      return ParseJsonTrajectory(text);
    case FileFormat::kRos:
      break;
  }
  return ParseRosYaml(text, names);
}

}  // namespace

LocatedTrajectory ReadTrajectory(const std::string& path, std::optional<FileFormat> format,
                                 const RosNames& names) {
  const std::string text = ReadFile(path, kLargestTrajectory);
  try {
    LocatedTrajectory read = ParseTrajectory(text, format.value_or(FormatOf(text)), names);
    ExpectMeasurable(read);
    return read;
  } catch (const UsageError& error) {
    throw UsageError(fmt::format("{}: {}", NameOf(path), error.what()));
  }
}

}  // namespace qal::io
