#include "reach_study.h"

#include <fmt/format.h>

#include "error.h"
#include "error_text.h"
#include "json_text.h"

namespace qal::io {

namespace {

Json NumbersOf(const Vec3& v) { return {v.x, v.y, v.z}; }

Vec3 VectorOf(const nlohmann::json& numbers) {
  return {numbers.at(0).get<double>(), numbers.at(1).get<double>(), numbers.at(2).get<double>()};
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
  return {{"arm", arm},
          {"joint_ranges_rad", ranges},
          {"base", FrameJson(loaded.arm.base())},
          {"tool", FrameJson(loaded.arm.tool())},
          {"box_min_m", NumbersOf(study.box_min)},
          {"box_max_m", NumbersOf(study.box_max)},
          {"step_m", study.step_m},
          {"directions", study.directions},
          {"spins", study.spins},
          {"tilt_axis", NumbersOf(study.tilt_axis)},
          {"tilt_cone_rad", study.tilt_cone_rad}};
}

ReachStudy ReadReachStudy(const std::string& description) {
  ReachStudy study;
  try {
    const nlohmann::json json = ParseJsonText(description);
    study.box_min = VectorOf(json.at("box_min_m"));
    study.box_max = VectorOf(json.at("box_max_m"));
    study.step_m = json.at("step_m").get<double>();
    study.directions = json.at("directions").get<int>();
    study.spins = json.at("spins").get<int>();
    study.tilt_axis = VectorOf(json.at("tilt_axis"));
    study.tilt_cone_rad = json.at("tilt_cone_rad").get<double>();
  } catch (const nlohmann::json::exception& error) {
    throw UsageError(fmt::format("its study is none: {}", error.what()));
  }
  if (const auto grid = GridOf(study); !grid) {
    throw UsageError("its study is none: " + ErrorText(grid.error()));
  }
  return study;
}

}  // namespace qal::io
