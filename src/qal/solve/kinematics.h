#ifndef QAL_SOLVE_KINEMATICS_H_
#define QAL_SOLVE_KINEMATICS_H_

/// @file
/// Poses of joints, joints of poses, the Jacobian, distances to singularities.

#include <limits>
#include <optional>
#include <vector>

#include "../model/arm.h"

namespace qal {

/// The pose of six joints.
/// @return the tool pose in double precision, the quaternion's largest component not negative;
///         kNotFinite, kNoPose, kSolverThrows
QAL_API Result<Pose> Forward(const Arm& arm, const Joints& joints);

/// One solution of a pose.
struct Candidate {
  Joints joints;        ///< [rad], each at the turn nearest the reference that its limits allow
  double distance_rad;  ///< sum of the absolute differences to the reference joints
  std::optional<Error> refusal;  ///< kJointRange or kStepBound, the first joint's; none: admissible
};

/// What is asked of a solution besides the joints' limits.
struct InverseOptions {
  /// How far each joint may be from its reference [rad], equality included.
  double step_bound_rad = std::numeric_limits<double>::infinity();
};

/// Every solution of a pose, in the solver's order. A solver gives joints within a turn; where
/// limits reach further, each joint is taken on by whole turns to where it is nearest `near`.
/// @param arm     the arm
/// @param pose    of the tool, in the base frame; the quaternion needs not be of length 1
/// @param near    reference joints [rad]
/// @param options the step bound
/// @return at least one; kNotFinite, kNotAnOrientation, kOutOfReach, kSolverFault, kSolverThrows
QAL_API Result<std::vector<Candidate>> Inverse(const Arm& arm, const Pose& pose, const Joints& near,
                                               const InverseOptions& options = {});

/// The admissible solution nearest `near`, the solver's earlier one in a tie.
/// @return the joints, with the pose as it was given; the errors of `Inverse`; or, where none is
///         admissible, the refusal of the nearest
QAL_API Result<State> Nearest(const Arm& arm, const Pose& pose, const Joints& near,
                              const InverseOptions& options = {});

/// The geometric Jacobian: rows 1 to 3 the velocity of the tool centre point [m/rad], rows 4 to 6
/// the angular velocity [rad/rad], both in the base frame; column j is joint j's.
struct JacobianMatrix {
  double element[6][6];  ///< [row][column]
};

/// The Jacobian of joints. Exact to rounding, not by small differences: the poses of a joint turned
/// a quarter either way differ by twice the velocity (Rodrigues' rotation formula).
QAL_API Result<JacobianMatrix> Jacobian(const Arm& arm, const Joints& joints);

/// How far joints are from where the arm loses a direction.
struct Singularities {
  double wrist_rad;   ///< between axes 4 and 6, 0 to pi / 2: 0 where they are parallel
  double elbow_rad;   ///< from the stretched or folded arm, 0 to pi / 2
  double shoulder_m;  ///< from the wrist's centre to the plane through axis 1 that is parallel to
                      ///< axis 2: 0 where the centre passes from the arm's front to its rear
  double smallest_singular_value;  ///< of the Jacobian in metres and radians
};

/// How far joints are from a singularity. The first three are those of arms with a spherical wrist
/// or three parallel axes, or near them
/// (`Family`), where they are as near; for others they are NaN. The last holds for any arm.
QAL_API Result<Singularities> DistanceToSingularities(const Arm& arm, const Joints& joints);

}  // namespace qal

#endif  // QAL_SOLVE_KINEMATICS_H_
