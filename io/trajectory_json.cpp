#include "trajectory_json.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "error.h"

namespace qal::io {

namespace {

constexpr auto kTimes = "time_s";
constexpr auto kJoints = "joints_rad";
constexpr auto kPositions = "position_m";
constexpr auto kOrientations = "orientation_wxyz";

nlohmann::json ParseText(std::string_view text) {
  try {
    return nlohmann::json::parse(text);
  } catch (const nlohmann::json::parse_error& error) {
    const std::string_view before = text.substr(0, error.byte == 0 ? 0 : error.byte - 1);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const size_t column = before.size() - (before.rfind('\n') + 1) + 1;
    throw UsageError(fmt::format("line {}, column {}: no valid JSON from here", line, column));
  } catch (const nlohmann::json::exception&) {
    throw UsageError("a number is too large");
  }
}

const nlohmann::json& ArrayOf(const nlohmann::json& json, const char* key, size_t count) {
  const auto found = json.find(key);
  if (found == json.end() || !found->is_array() || found->empty()) {
    throw UsageError(fmt::format("no array '{}' with an entry for each sample", key));
  }
  if (count > 0 && found->size() != count) {
    throw UsageError(fmt::format("{}: {} entries, {} were expected, as in {}", key, found->size(),
                                 count, kTimes));
  }
  return *found;
}

double NumberOf(const nlohmann::json& value, const char* key, size_t sample) {
  if (!value.is_number())
    throw UsageError(fmt::format("{}[{}]: a number was expected", key, sample));
  return value.get<double>();
}

double* AppendRow(const nlohmann::json& rows, const char* key, size_t sample, size_t count,
                  double* values) {
  const nlohmann::json& row = rows[sample];
  if (!row.is_array() || row.size() != count) {
    throw UsageError(fmt::format("{}[{}]: {} numbers were expected", key, sample, count));
  }
  for (const nlohmann::json& value : row) *values++ = NumberOf(value, key, sample);
  return values;
}

}  // namespace

nlohmann::ordered_json ToJson(const Trajectory& trajectory) {
  using Json = nlohmann::ordered_json;
  Json times = Json::array();
  Json joints = Json::array();
  Json positions = Json::array();
  Json orientations = Json::array();
  const bool poses = HavePoses(trajectory);
  for (const Sample& sample : trajectory) {
    times.push_back(sample.time_s);
    joints.push_back(sample.joints);
    if (!poses) continue;
    const auto& [position, orientation] = *sample.pose;
    positions.push_back({position.x, position.y, position.z});
    orientations.push_back({orientation.w, orientation.x, orientation.y, orientation.z});
  }
  Json json = {{kTimes, std::move(times)}, {kJoints, std::move(joints)}};
  if (poses) {
    json[kPositions] = std::move(positions);
    json[kOrientations] = std::move(orientations);
  }
  return json;
}

LocatedTrajectory ParseJsonTrajectory(std::string_view text) {
  const nlohmann::json json = ParseText(text);
  const nlohmann::json& times = ArrayOf(json, kTimes, 0);
  const nlohmann::json& joints = ArrayOf(json, kJoints, times.size());
  const bool pose = json.contains(kPositions) || json.contains(kOrientations);
  const nlohmann::json* positions = pose ? &ArrayOf(json, kPositions, times.size()) : nullptr;
  const nlohmann::json* orientations = pose ? &ArrayOf(json, kOrientations, times.size()) : nullptr;
  LocatedTrajectory read;
  read.samples.reserve(times.size());
  for (size_t i = 0; i < times.size(); ++i) {
    std::array<double, 14> values{};
    values[0] = NumberOf(times[i], kTimes, i);
    double* next = AppendRow(joints, kJoints, i, 6, values.data() + 1);
    if (pose) {
      next = AppendRow(*positions, kPositions, i, 3, next);
      AppendRow(*orientations, kOrientations, i, 4, next);
    }
    try {
      read.samples.push_back(SampleOf(values.data(), pose));
    } catch (const UsageError& error) {
      throw UsageError(fmt::format("{}[{}]: {}", kOrientations, i, error.what()));
    }
  }
  return read;
}

}  // namespace qal::io
