#include "reach_study.h"

#include <fmt/format.h>

#include "../src/qal/model/number_hash.h"
#include "error.h"
#include "error_text.h"
#include "json_text.h"
#include "report_arm.h"

namespace qal::io {

namespace {

Json NumbersOf(const Vec3& v) { return {v.x, v.y, v.z}; }

Vec3 VectorOf(const nlohmann::json& numbers) {
  return {numbers.at(0).get<double>(), numbers.at(1).get<double>(), numbers.at(2).get<double>()};
}

std::vector<double> NumbersOf(const Pose& pose) {
  const auto& [p, q] = pose;
  return {p.x, p.y, p.z, q.w, q.x, q.y, q.z};
}

// Two studies of other poses have another description.
std::string HashOf(const std::vector<Pose>& poses) {
  NumberHash hash;
  for (const Pose& pose : poses) {
    for (const double number : NumbersOf(pose)) hash.Add(number);
  }
  return hash.Text();
}

// What is tried in each cell.
Json TriedJson(const ReachStudy& study) {
  if (!study.poses.empty()) {
    return {
        {"kind", "placement"}, {"poses", study.poses.size()}, {"poses_hash", HashOf(study.poses)}};
  }
  return {{"kind", "reach"},
          {"directions", study.directions},
          {"spins", study.spins},
          {"tilt_axis", NumbersOf(study.tilt_axis)},
          {"tilt_cone_rad", study.tilt_cone_rad}};
}

void ReadTried(const nlohmann::json& json, const ReachPoses& poses, ReachStudy& study) {
  const auto kind = json.at("kind").get<std::string>();
  if (kind == "reach") {
    study.directions = json.at("directions").get<int>();
    study.spins = json.at("spins").get<int>();
    study.tilt_axis = VectorOf(json.at("tilt_axis"));
    study.tilt_cone_rad = json.at("tilt_cone_rad").get<double>();
    return;
  }
  if (kind != "placement") {
    throw UsageError(fmt::format("its kind is '{}'; reach or placement is expected", kind));
  }
  study.poses = poses(json.at("poses").get<size_t>());
  if (json.at("poses_hash").get<std::string>() != HashOf(study.poses)) {
    throw UsageError("its poses are not those of its study");
  }
}

Json FrameJson(const Transform& frame) {
  return {{"rotation_by_rows", frame.rotation}, {"position_m", NumbersOf(frame.position)}};
}

}  // namespace

Json ReachStudyJson(const LoadedArm& loaded, const ReachStudy& study) {
  Json arm = ArmJson(loaded);
  arm.erase("file");  // the same arm may lie anywhere
  Json ranges = Json::array();
  for (const JointModel& joint : loaded.arm.joints()) {
    ranges.push_back({joint.lower_rad.value, joint.upper_rad.value});
  }
  const Result<ArmAtZero> at_zero = AtZero(loaded.arm);
  Json json = {
      {"arm", arm},
      {"joint_ranges_rad", ranges},
      {"base", FrameJson(loaded.arm.base())},
      {"tool", FrameJson(loaded.arm.tool())},
      {"at_zero", at_zero ? AtZeroJson(*at_zero) : Json()},
      {"box_min_m", NumbersOf(study.box_min)},
      {"box_max_m", NumbersOf(study.box_max)},
      {"step_m", study.step_m},
      {"line_m", study.line_m},
      {"line_direction", study.line_direction ? NumbersOf(*study.line_direction) : Json(nullptr)}};
  json.update(TriedJson(study));
  return json;
}

ReachStudy ReadReachStudy(const std::string& description, const ReachPoses& poses) {
  ReachStudy study;
  try {
    const nlohmann::json json = ParseJsonText(description);
    study.box_min = VectorOf(json.at("box_min_m"));
    study.box_max = VectorOf(json.at("box_max_m"));
    study.step_m = json.at("step_m").get<double>();
    study.line_m = json.at("line_m").get<double>();
    const auto& direction = json.at("line_direction");
    if (!direction.is_null()) study.line_direction = VectorOf(direction);
    ReadTried(json, poses, study);
  } catch (const nlohmann::json::exception& error) {
    throw UsageError(fmt::format("its study is none: {}", error.what()));
  }
  if (const auto grid = GridOf(study); !grid) {
    throw UsageError("its study is none: " + ErrorText(grid.error()));
  }
  return study;
}

}  // namespace qal::io
