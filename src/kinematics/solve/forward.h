#ifndef QAL_KINEMATICS_SOLVE_FORWARD_H_
#define QAL_KINEMATICS_SOLVE_FORWARD_H_

#include "../../core/roadpoint.h"
#include "context.h"

namespace qal {

/// The pose of six joints [rad], the quaternion in single precision; see `Ikfunc::ArmFk`.
/// @return false, both outputs untouched and kNoPose told, when the matrix has a NaN
bool ForwardPose(const Context& arm, const double* joints, Pos& position, Ori& orientation);

/// Gives a waypoint the pose of its own joints.
inline bool ForwardPose(const Context& arm, RoadPoint& point) {
  return ForwardPose(arm, point.jointpos, point.position, point.orientation);
}

}  // namespace qal

#endif  // QAL_KINEMATICS_SOLVE_FORWARD_H_
