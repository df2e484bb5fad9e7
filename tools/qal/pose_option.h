#ifndef QAL_TOOLS_QAL_POSE_OPTION_H_
#define QAL_TOOLS_QAL_POSE_OPTION_H_

#include <qal/model/arm.h>

#include "number_option.h"
#include "units.h"

namespace qal::tools {

/// Six joints [rad], each of any size.
Joints ReadJoints(const NumberOption& joints, const Units& units);

/// Six joints [rad] within the arm's limits.
Joints ReadArmJoints(const NumberOption& joints, const Units& units, const Arm& arm);

/// Joints, and their pose.
/// @throw Failure when the solver gives no pose
State StateAt(const Arm& arm, const Joints& joints);

/// A pose: seven numbers x y z qw qx qy qz, or x y z with roll pitch yaw in `rpy`. The quaternion
/// is normalised, with a note on standard error when that changes it by more than 1e-6.
/// @param kept the orientation that x y z alone stand for; null: they need `rpy`
Pose ReadPose(const NumberOption& pose, const NumberOption& rpy, const Units& units,
              const Quat* kept = nullptr);

/// x y z [m].
Vec3 ReadVector(const NumberOption& vector, const Units& units, const std::string& expected);

/// Help texts that every command shares.
constexpr const char* kJointsShape = "Q1 .. Q6";
constexpr const char* kJointsHelp = "six joint angles [rad; --deg: deg]";
constexpr const char* kPoseShape = "X Y Z QW QX QY QZ";
constexpr const char* kPoseHelp =
    "pose of the tool in the base frame: x y z [m; --mm: mm] qw qx qy qz\n"
    "(a quaternion, w first, normalised if need be), or x y z with --rpy";
constexpr const char* kRpyShape = "R P Y";
constexpr const char* kRpyHelp =
    "orientation as roll pitch yaw [rad; --deg: deg]:\nR = Rz(yaw) Ry(pitch) Rx(roll)";

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_POSE_OPTION_H_
