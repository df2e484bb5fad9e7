#ifndef QAL_KINEMATICS_POSE_FRAME_MOVES_H_
#define QAL_KINEMATICS_POSE_FRAME_MOVES_H_

#include "../../core/roadpoint.h"

namespace qal {

// Moves in a frame; the contracts stand at the operations of `Ikfunc` that are named.

/// `EndMoveXYZ`: a displacement of the tool frame in the base frame, scaled by |orientation|^2.
Pos ToBaseFrame(const Ori& orientation, const Pos& displacement);
/// `EndRotXYZ`: `orientation` turned about the tool axis of the first non-zero component.
Ori TurnedAboutToolAxis(const Ori& orientation, const Roz& angles);
/// `RelatMove` and `RelatRot`: a waypoint moved or turned in its tool frame; joints and flag are
/// copied.
RoadPoint MovedInToolFrame(const RoadPoint& point, const Pos& displacement);
RoadPoint TurnedInToolFrame(const RoadPoint& point, const Roz& angles);
/// `PointDis` and `PointAdd`: position and quaternion difference (`a` less `b`) and sum, by
/// component; zero joints, false flag.
RoadPoint PoseDifference(const RoadPoint& a, const RoadPoint& b);
RoadPoint PoseSum(const RoadPoint& a, const RoadPoint& b);

/// `EndMove`: the pose of one jog step.
/// @param coordinate 1: tool frame; any other value: base frame
/// @param move_mode  0, 1, 2: along x, y, z; 3, 4, 5: about them, in the tool frame only
RoadPoint JogTarget(const RoadPoint& current, int coordinate, int move_mode, double step);

}  // namespace qal

#endif  // QAL_KINEMATICS_POSE_FRAME_MOVES_H_
