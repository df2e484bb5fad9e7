#ifndef QAL_TOOLS_QAL_TRAJECTORY_H_
#define QAL_TOOLS_QAL_TRAJECTORY_H_

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "../../src/core/roadpoint.h"
#include "../../src/kinematics/solve/arm_numbers.h"

namespace qal::tools {

constexpr double kCycleS = kReferenceNumbers.cycle_s;

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

/// A trajectory read from a file, and the line that each sample begins on, counted from 1. JSON
/// gives no lines.
struct LocatedTrajectory {
  Trajectory samples;
  std::vector<size_t> lines;
};

/// The waypoints of a plan, one control cycle apart, the first at time 0. Sample i is at the double
/// nearest i * 0.005 s.
Trajectory FromWaypoints(const std::vector<RoadPoint>& points);

/// The sample of `values`: time, six joints, then, if `pose`, x, y, z, qw, qx, qy, qz.
/// @throw UsageError when the quaternion is no orientation: all zeros
Sample SampleOf(const double* values, bool pose);

/// The waypoint at a sample's joints, its pose by forward kinematics.
/// @throw Failure "sample N: REASON" when the solver gives none
RoadPoint PointAt(const Trajectory& trajectory, size_t sample);

/// Whether every sample has a pose; false for no samples.
bool HavePoses(const Trajectory& trajectory);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_TRAJECTORY_H_
