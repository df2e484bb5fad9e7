#include "trajectory_ros.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <numeric>

#include "error.h"
#include "finite_differences.h"
#include "numbers.h"
#include "yaml_document.h"

namespace qal::io {

namespace {

constexpr int kNsPerS = 1000000000;
constexpr double kSecondsLimit = 2147483648.0;  // a ROS duration counts its seconds in 32 bits

// A sample's time, later than `before` [ns].
int64_t NanosecondsOf(const FileTrajectory& trajectory, size_t sample, int64_t before) {
  const double time_s = trajectory[sample].time_s;
  if (!(std::fabs(time_s) < kSecondsLimit - 1.0)) {
    throw UsageError(fmt::format("sample {}: {} s does not fit a ROS duration", sample, time_s));
  }
  const int64_t time = std::llround(time_s * kNsPerS);
  if (time > before) return time;
  throw UsageError(
      fmt::format("sample {}: the time is not a nanosecond after the one before", sample));
}

template <typename Value>
std::string ListOf(Value value) {
  std::string list = "[";
  for (size_t joint = 0; joint < 6; ++joint) {
    if (joint > 0) list += ", ";
    list += FormatNumber(value(joint));
  }
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
  return static_cast<double>(seconds * kNsPerS + nanoseconds) / kNsPerS;
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

}  // namespace

JointNames DefaultJointNames() {
  return {"joint_1", "joint_2", "joint_3", "joint_4", "joint_5", "joint_6"};
}

std::string ToRosYaml(const FileTrajectory& trajectory, const JointNames& names) {
  std::string yaml = "header:\n  stamp: {sec: 0, nanosec: 0}\n  frame_id: \"\"\n";
  // A list of strings in JSON is one in YAML, whatever the names hold.
  yaml += "joint_names: " + nlohmann::json(names).dump() + "\npoints:\n";
  const FiniteDifferences rates(trajectory);
  int64_t before = INT64_MIN;
  for (size_t i = 0; i < trajectory.size(); ++i) {
    const int64_t time = NanosecondsOf(trajectory, i, before);
    before = time;
    const int64_t nanoseconds = (time % kNsPerS + kNsPerS) % kNsPerS;
    yaml += fmt::format(
        "- positions: {}\n  velocities: {}\n  accelerations: {}\n"
        "  time_from_start: {{sec: {}, nanosec: {}}}\n",
        ListOf([&](size_t joint) { return trajectory[i].joints[joint]; }),
        ListOf([&](size_t joint) { return rates.JointSpeedAt(i, joint); }),
        ListOf([&](size_t joint) { return rates.JointAcceleration(i, joint); }),
        (time - nanoseconds) / kNsPerS, nanoseconds);
  }
  return yaml;
}

LocatedTrajectory ParseRosYaml(std::string_view text, const RosNames& names) {
  LocatedTrajectory read;
  YamlDocument document(text);
  const YamlNode message = document.root();
  const YamlNode listed = message.At("joint_names");
  const std::array<size_t, 6> places = FindJoints(listed, names, read.notes);
  const YamlNode points = message.At("points");
  if (points.size() == 0) points.Refuse("no points");
  for (size_t i = 0; i < points.size(); ++i) {
    const YamlNode point = points[i];
    const YamlNode positions = point.At("positions");
    if (positions.size() != listed.size()) {
      positions.Refuse(fmt::format("{} positions, {} were expected, as in joint_names",
                                   positions.size(), listed.size()));
    }
    FileSample sample{TimeOf(point), {}, {}};
    for (size_t joint = 0; joint < 6; ++joint) {
      sample.joints[joint] = NumberOf(positions[places[joint]], "positions");
    }
    read.samples.push_back(sample);
    read.lines.push_back(point.line());
  }
  return read;
}

}  // namespace qal::io
