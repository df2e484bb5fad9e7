#include "trajectory.h"

#include <fmt/format.h>

#include <algorithm>

#include "../../io/error.h"
#include "agreement.h"

namespace qal::tools {

using namespace io;

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

Sample SampleOf(const double* values, bool pose) {
  Sample sample{values[0], {}, {}};
  std::copy(values + 1, values + 7, sample.joints_rad.begin());
  if (!pose) return sample;
  const Ori orientation(values[10], values[11], values[12], values[13]);
  if (orientation == Ori()) throw UsageError("the quaternion is all zeros, no orientation");
  sample.pose = Sample::Pose{Pos(values[7], values[8], values[9]), orientation};
  return sample;
}

RoadPoint PointAt(const Trajectory& trajectory, size_t sample) {
  try {
    return AtJoints(trajectory[sample].joints_rad);
  } catch (const Failure& failure) {
    throw Failure(fmt::format("sample {}: {}", sample, failure.what()));
  }
}

bool HavePoses(const Trajectory& trajectory) {
  return !trajectory.empty() && std::all_of(trajectory.begin(), trajectory.end(),
                                            [](const Sample& s) { return s.pose.has_value(); });
}

}  // namespace qal::tools
