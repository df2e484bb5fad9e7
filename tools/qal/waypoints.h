#ifndef QAL_TOOLS_QAL_WAYPOINTS_H_
#define QAL_TOOLS_QAL_WAYPOINTS_H_

#include <qal/model/arm.h>

#include <vector>

#include "../../io/trajectory.h"
#include "../../src/core/roadpoint.h"

namespace qal::tools {

/// The library's waypoints as a trajectory, one control cycle of 0.005 s apart.
io::Trajectory FromWaypoints(const std::vector<RoadPoint>& points);

/// The waypoint at a sample's joints, its pose by forward kinematics.
/// @throw Failure "sample N: REASON" when the solver gives none
RoadPoint PointAt(const io::Trajectory& trajectory, size_t sample);

/// A waypoint's pose.
Pose PoseOf(const RoadPoint& point);

/// Distance of two positions [m].
double Distance(const Pos& from, const Pos& to);

/// An arm with the solver that the loader has found, and the reference arm's motors.
/// @throw UsageError when it is no solver
Arm SolverArm();

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_WAYPOINTS_H_
