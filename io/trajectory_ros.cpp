#include "trajectory_ros.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <numeric>
#include <utility>

#include "error.h"
#include "finite_differences.h"
#include "numbers.h"
#include "yaml_document.h"

namespace qal::io {

namespace {

constexpr int kNsPerS = 1000000000;
constexpr double kSecondsLimit = 2147483648.0;  // a ROS duration counts its seconds in 32 bits

int64_t Nanoseconds(double time_s) { return std::llround(time_s * kNsPerS); }

double SecondsOf(int64_t nanoseconds) { return static_cast<double>(nanoseconds) / kNsPerS; }

// A sample's time, later than `before` [ns].
int64_t NanosecondsOf(const FileTrajectory& trajectory, size_t sample, int64_t before) {
  const double time_s = trajectory[sample].time_s;
  if (!(std::fabs(time_s) < kSecondsLimit - 1.0)) {
    throw UsageError(fmt::format("sample {}: {} s does not fit a ROS duration", sample, time_s));
  }
  const int64_t time = Nanoseconds(time_s);
  if (time > before) return time;
  throw UsageError(
      fmt::format("sample {}: the time is not a nanosecond after the one before", sample));
}

// A number that YAML 1.1 takes for one with a fraction: to the parser of ROS 2, 1e-09 is a text.
std::string RosNumber(double value) {
  std::string text = FormatNumber(value);
  if (text.find('.') != std::string::npos) return text;
  return text.insert(std::min(text.find('e'), text.size()), ".0");
}

std::string ListOf(const Joints& joints) {
  std::string list;
  for (const double joint : joints) list.append(list.empty() ? "[" : ", ").append(RosNumber(joint));
  return list + "]";
}

double NumberOf(const YamlNode& node, std::string_view what) {
  const auto text = node.Scalar();
  if (!text) node.Refuse(fmt::format("{}: a number was expected", what));
  try {
    return ParseNumber(*text, std::string(what));
  } catch (const UsageError& error) {
    node.Refuse(error.what());
  }
}

// A whole number of at least `least` and below `limit`.
int64_t WholeOf(const YamlNode& node, std::string_view key, double least, double limit) {
  const double number = NumberOf(node, key);
  if (number != std::floor(number) || number < least || number >= limit) {
    node.Refuse(fmt::format("{}: {} is no whole number of at least {} and below {}", key, number,
                            least, limit));
  }
  return static_cast<int64_t>(number);
}

double TimeOf(const YamlNode& point) {
  const YamlNode time = point.At("time_from_start");
  const bool ros1 = time.Find("secs").has_value();
  const char* s_key = ros1 ? "secs" : "sec";
  const char* ns_key = ros1 ? "nsecs" : "nanosec";
  const int64_t seconds = WholeOf(time.At(s_key), s_key, -kSecondsLimit, kSecondsLimit);
  const int64_t nanoseconds = WholeOf(time.At(ns_key), ns_key, 0.0, kNsPerS);
  // One rounding only, so that a time in whole nanoseconds is the nearest double.
  return SecondsOf(seconds * kNsPerS + nanoseconds);
}

size_t CountOf(const YamlNode& list, const std::string& name) {
  size_t count = 0;
  for (size_t i = 0; i < list.size(); ++i) count += list[i].Scalar() == name ? 1 : 0;
  return count;
}

std::string NamesIn(const YamlNode& list) {
  std::string names;
  for (size_t i = 0; i < list.size(); ++i) {
    names += fmt::format("{}{}", i == 0 ? "" : ", ", list[i].Scalar().value_or("(no name)"));
  }
  return names;
}

// Where each of the arm's joints is in `list`; a note when it isn't by name.
std::array<size_t, 6> FindJoints(const YamlNode& list, const RosNames& wanted,
                                 std::vector<std::string>& notes) {
  std::array<size_t, 6> places{};
  const auto is_there_once = [&](const std::string& name) { return CountOf(list, name) == 1; };
  if (!wanted.requested && list.size() == places.size() &&
      !std::all_of(wanted.names.begin(), wanted.names.end(), is_there_once)) {
    std::iota(places.begin(), places.end(), size_t{0});
    notes.push_back(fmt::format("joints 1 to 6 in the order of the file: {}", NamesIn(list)));
    return places;
  }
  for (size_t joint = 0; joint < places.size(); ++joint) {
    const std::string& name = wanted.names[joint];
    if (!is_there_once(name)) {
      list.Refuse(fmt::format(
          "joint_names: '{}' is there {} times, once is expected; --joint-names says other names",
          name, CountOf(list, name)));
    }
    while (list[places[joint]].Scalar() != name) ++places[joint];
  }
  return places;
}

// Whether the point has the list: not where it is left out or empty.
bool Has(const YamlNode& point, const char* key) {
  const auto list = point.Find(key);
  return list && (list->size() > 0 || list->Scalar());
}

Joints JointsOf(const YamlNode& point, const char* key, const std::array<size_t, 6>& places,
                size_t count) {
  const YamlNode list = point.At(key);
  if (list.size() != count) {
    list.Refuse(fmt::format("{} {}, {} were expected, as in joint_names", list.size(), key, count));
  }
  Joints joints;
  for (size_t joint = 0; joint < joints.size(); ++joint) {
    joints[joint] = NumberOf(list[places[joint]], key);
  }
  return joints;
}

// The trajectory with the times as a file holds them [s], so that its differences are those that a
// reader finds.
FileTrajectory WithHeldTimes(FileTrajectory trajectory) {
  int64_t before = INT64_MIN;
  for (size_t i = 0; i < trajectory.size(); ++i) {
    before = NanosecondsOf(trajectory, i, before);
    trajectory[i].time_s = SecondsOf(before);
  }
  return trajectory;
}

}  // namespace

JointNames DefaultJointNames() {
  return {"joint_1", "joint_2", "joint_3", "joint_4", "joint_5", "joint_6"};
}

JointNames JointNamesOf(const Arm& arm) {
  JointNames names;
  for (size_t joint = 0; joint < names.size(); ++joint) names[joint] = arm.joints()[joint].name;
  return names;
}

std::string ToRosYaml(const FileTrajectory& trajectory, const JointNames& names,
                      RosInterface interface) {
  // The goal's trajectory is nested by indenting it.
  const bool goal = interface == RosInterface::kGoal;
  const std::string indent = goal ? "  " : "";
  std::string yaml = goal ? "trajectory:\n" : "";
  yaml +=
      fmt::format("{0}header:\n{0}  stamp: {{sec: 0, nanosec: 0}}\n{0}  frame_id: \"\"\n", indent);
  // A list of strings in JSON is one in YAML, whatever the names hold.
  yaml += fmt::format("{0}joint_names: {1}\n{0}points:\n", indent, nlohmann::json(names).dump());
  for (const FileSample& sample :
       WithRates(WithHeldTimes(trajectory), &FiniteDifferences::JointSpeedAt)) {
    const int64_t time = Nanoseconds(sample.time_s);
    const int64_t nanoseconds = (time % kNsPerS + kNsPerS) % kNsPerS;
    yaml += fmt::format(
        "{0}- positions: {1}\n{0}  velocities: {2}\n{0}  accelerations: {3}\n"
        "{0}  time_from_start: {{sec: {4}, nanosec: {5}}}\n",
        indent, ListOf(sample.joints), ListOf(*sample.velocities), ListOf(*sample.accelerations),
        (time - nanoseconds) / kNsPerS, nanoseconds);
  }
  return yaml;
}

LocatedTrajectory ParseRosYaml(std::string_view text, const RosNames& names) {
  LocatedTrajectory read;
  YamlDocument document(text);
  const YamlNode root = document.root();
  const YamlNode message = root.Find("trajectory").value_or(root);
  const YamlNode listed = message.At("joint_names");
  const std::array<size_t, 6> places = FindJoints(listed, names, read.notes);
  const YamlNode points = message.At("points");
  if (points.size() == 0) points.Refuse("no points");
  for (size_t i = 0; i < points.size(); ++i) {
    const YamlNode point = points[i];
    FileSample sample{TimeOf(point), JointsOf(point, "positions", places, listed.size())};
    for (const auto& [key, rates] : {std::pair{"velocities", &FileSample::velocities},
                                     std::pair{"accelerations", &FileSample::accelerations}}) {
      if (Has(point, key)) sample.*rates = JointsOf(point, key, places, listed.size());
      if (i == 0 || (sample.*rates).has_value() == (read.samples[0].*rates).has_value()) continue;
      point.Refuse(
          fmt::format("{} in some points and not in others; all or none are expected", key));
    }
    read.samples.push_back(sample);
    read.lines.push_back(point.line());
  }
  DropDifferences(read.samples, &FiniteDifferences::JointSpeedAt);
  return read;
}

}  // namespace qal::io
