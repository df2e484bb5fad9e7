#ifndef QAL_IO_TRAJECTORY_ROS_H_
#define QAL_IO_TRAJECTORY_ROS_H_

#include <array>
#include <string>
#include <string_view>

#include "trajectory.h"

namespace qal::io {

/// The names of the arm's joints, joint 1 first.
using JointNames = std::array<std::string, 6>;

/// joint_1 to joint_6.
JointNames DefaultJointNames();

/// Those of the arm's description; joint_N of a joint that has none there.
JointNames JointNamesOf(const Arm& arm);

/// What of ROS 2 a file is for.
enum class RosInterface {
  kMessage,  ///< `trajectory_msgs/msg/JointTrajectory`, which a topic takes
  kGoal      ///< the goal of `control_msgs/action/FollowJointTrajectory`, which has one within
};

/// The names to read a ROS file by.
struct RosNames {
  JointNames names = DefaultJointNames();
  bool requested = false;  ///< whether somebody named these very ones
};

/// A trajectory for ROS 2 in YAML, as docs/ros2.md has it. What a goal has besides, tolerances and
/// a mobile base, is left out, and so is what a message says of nothing: effort. Velocities and
/// accelerations are the samples' own. Where they have none they are differences, those at the
/// samples themselves, as a controller that interpolates wants them: velocity 0 at the first sample
/// and the last. There is no place for a pose.
///
/// Numbers read back to the same double. Times are held in whole nanoseconds; those of the control
/// cycle read back to the same double too.
/// @throw UsageError "sample N: REASON" when times do not increase in whole nanoseconds, or do not
///        fit a ROS duration
std::string ToRosYaml(const FileTrajectory& trajectory, const JointNames& names,
                      RosInterface interface = RosInterface::kMessage);

/// Reads a `JointTrajectory` in YAML, also within a goal, also with the `secs` and `nsecs` of ROS
/// 1, also as `ros2 topic echo` prints it. Joints are taken by their names, whatever their order;
/// others are passed over. Where nobody named them and they aren't the file's, its six joints are
/// taken in its order, with a note. Velocities and accelerations are in all points or in none;
/// those that are ToRosYaml's differences are passed over. Times are not checked for their order.
/// @throw UsageError "line N: REASON"
LocatedTrajectory ParseRosYaml(std::string_view text, const RosNames& names);

}  // namespace qal::io

#endif  // QAL_IO_TRAJECTORY_ROS_H_
