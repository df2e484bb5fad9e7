#include "trajectory.h"

#include <algorithm>

namespace qal::tools {

Trajectory FromWaypoints(const std::vector<RoadPoint>& points) {
  Trajectory trajectory;
  trajectory.reserve(points.size());
  for (const RoadPoint& point : points) {
    Sample sample;
    // Divided, not multiplied by 0.005: that is not exact, and its error would show in the digits.
    sample.time_s = static_cast<double>(trajectory.size()) / 200.0;
    std::copy(point.jointpos, point.jointpos + 6, sample.joints_rad.begin());
    sample.pose = Sample::Pose{point.position, point.orientation};
    trajectory.push_back(sample);
  }
  return trajectory;
}

bool HavePoses(const Trajectory& trajectory) {
  return !trajectory.empty() && std::all_of(trajectory.begin(), trajectory.end(),
                                            [](const Sample& s) { return s.pose.has_value(); });
}

}  // namespace qal::tools
