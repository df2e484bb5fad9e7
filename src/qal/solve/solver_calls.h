#ifndef QAL_SOLVE_SOLVER_CALLS_H_
#define QAL_SOLVE_SOLVER_CALLS_H_

#include "../model/arm.h"
#include "../model/frames.h"
#include "../model/lines.h"
#include "kinematics.h"

// Internal: the calls of an arm's solver, with its answers checked and its exceptions caught.
namespace qal {

/// The tool frame of six joints [rad], as the solver gives it.
/// @return kNotFinite, kNoPose, kSolverFault when the matrix is no rotation, kSolverThrows
Result<Frame> CallForward(const Arm& arm, const Joints& joints);

/// The quaternion of a rotation matrix, its largest component positive.
Quat QuaternionOf(const Matrix3& m);

/// A shorter quaternion is what rounding has left of components that were to cancel.
constexpr double kShortestQuaternion = 1e-6;

/// Refuses a pose that is none.
/// @return kNotFinite; kNotAnOrientation for a quaternion too short to be a direction
std::optional<Error> RefusedPose(const Pose& pose);

/// The axis of joint `j` at the joints that a Jacobian is of, in the base frame.
Line AxisOf(const JacobianMatrix& jacobian, size_t j, const Vector3& tool_centre);

}  // namespace qal

#endif  // QAL_SOLVE_SOLVER_CALLS_H_
