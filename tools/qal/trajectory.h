#ifndef QAL_TOOLS_QAL_TRAJECTORY_H_
#define QAL_TOOLS_QAL_TRAJECTORY_H_

#include <array>
#include <optional>
#include <vector>

#include "../../src/core/roadpoint.h"

namespace qal::tools {

constexpr double kCycleS = 0.005;  // control cycle of the arm

/// One sample of a trajectory. Only time and joints are always there.
struct Sample {
  double time_s;
  std::array<double, 6> joints_rad;

  struct Pose {
    Pos position;     // tool centre [m, base frame]
    Ori orientation;  // w first
  };
  std::optional<Pose> pose;
};

/// A trajectory as the files hold it, in the order of time.
using Trajectory = std::vector<Sample>;

/// The waypoints of a plan, one control cycle apart, the first at time 0. Sample i is at the double
/// nearest i * 0.005 s.
Trajectory FromWaypoints(const std::vector<RoadPoint>& points);

/// Whether every sample has a pose; false for no samples.
bool HavePoses(const Trajectory& trajectory);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_TRAJECTORY_H_
