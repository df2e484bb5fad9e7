#ifndef QAL_KINEMATICS_TRAJECTORY_JOINT_STEP_CHECK_H_
#define QAL_KINEMATICS_TRAJECTORY_JOINT_STEP_CHECK_H_

#include "../../core/roadpoint.h"

namespace qal {

/// Whether the arm can go from one waypoint to the next in one cycle; see
/// `Ikfunc::CheckRobotJointStep`.
bool CheckJointStep(const RoadPoint& from, const RoadPoint& to, int motor_speed_rpm);

}  // namespace qal

#endif  // QAL_KINEMATICS_TRAJECTORY_JOINT_STEP_CHECK_H_
