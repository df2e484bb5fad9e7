#ifndef QAL_KINEMATICS_TRAJECTORY_JOINT_WALK_H_
#define QAL_KINEMATICS_TRAJECTORY_JOINT_WALK_H_

#include <vector>

#include "../solve/forward.h"

namespace qal {

/// Gives `point` the pose of its joints and appends a copy. When forward kinematics fails, that has
/// been told, and the point goes in with the pose it had.
inline void AppendWithPose(const Context& arm, RoadPoint& point, std::vector<RoadPoint>& road) {
  (void)ForwardPose(arm, point);
  road.push_back(point);
}

/// Replaces a trajectory by its two end points, as they are: a move too short for a profile.
inline void ReplaceByEndPoints(const RoadPoint& start, const RoadPoint& end,
                               std::vector<RoadPoint>& road) {
  road.clear();
  road.push_back(start);
  road.push_back(end);
}

}  // namespace qal

#endif  // QAL_KINEMATICS_TRAJECTORY_JOINT_WALK_H_
