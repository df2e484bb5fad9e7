#include "trajectory_json.h"

namespace qal::tools {

nlohmann::ordered_json ToJson(const Trajectory& trajectory) {
  using Json = nlohmann::ordered_json;
  Json times = Json::array();
  Json joints = Json::array();
  Json positions = Json::array();
  Json orientations = Json::array();
  const bool poses = HavePoses(trajectory);
  for (const Sample& sample : trajectory) {
    times.push_back(sample.time_s);
    joints.push_back(sample.joints_rad);
    if (!poses) continue;
    const auto& [position, orientation] = *sample.pose;
    positions.push_back({position.x, position.y, position.z});
    orientations.push_back({orientation.w, orientation.x, orientation.y, orientation.z});
  }
  Json json = {{"time_s", std::move(times)}, {"joints_rad", std::move(joints)}};
  if (poses) {
    json["position_m"] = std::move(positions);
    json["orientation_wxyz"] = std::move(orientations);
  }
  return json;
}

}  // namespace qal::tools
