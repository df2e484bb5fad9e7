#ifndef QAL_MODEL_DESCRIPTION_H_
#define QAL_MODEL_DESCRIPTION_H_

/// @file
/// Descriptions of arms, and the settings that go before what these say.

#include <array>
#include <optional>
#include <string>

#include "pose.h"

namespace qal {

/// One joint of a described arm. What the description doesn't give stays empty.
struct JointDescription {
  std::string name;         ///< what it is called; may be empty
  Transform origin;         ///< the joint's frame at zero, in the frame that the joint before turns
  Vec3 axis = {0, 0, 1};    ///< unit axis in the joint's frame
  bool continuous = false;  ///< turns without end: has no limits, and needs none
  std::optional<double> lower_rad;       ///< lower limit [rad]
  std::optional<double> upper_rad;       ///< upper limit [rad]
  std::optional<double> velocity_rad_s;  ///< highest speed, either way [rad/s]
};

/// An arm as somebody described it: six revolute joints between a base and a tip frame.
struct ArmDescription {
  std::string name;                        ///< what the arm is called; may be empty
  std::string base;                        ///< name of the base frame, where it has one
  std::string tip;                         ///< name of the tip frame, where it has one
  std::array<JointDescription, 6> joints;  ///< joint 1 first
  Transform tip_in_last;                   ///< the tip frame in the frame that joint 6 turns
};

/// What is told of a joint besides its geometry; goes before what the description says. A speed and
/// an acceleration may be given at the joint or at its motor, with the gear ratio.
struct JointSettings {
  std::optional<double> lower_rad;                 ///< lower limit [rad]
  std::optional<double> upper_rad;                 ///< upper limit [rad]
  std::optional<double> velocity_rad_s;            ///< highest speed, either way [rad/s]
  std::optional<double> acceleration_rad_s2;       ///< highest acceleration [rad/s^2]
  std::optional<double> jerk_rad_s3;               ///< highest jerk [rad/s^3]
  std::optional<double> gear_ratio;                ///< motor turns per turn of the joint
  std::optional<double> motor_speed_rpm;           ///< highest speed of the motor [rpm]
  std::optional<double> motor_acceleration_rpm_s;  ///< highest acceleration of the motor [rpm/s]
};

/// What is told of an arm besides its geometry.
struct ArmSettings {
  std::string name;                     ///< empty: the description's
  std::array<JointSettings, 6> joints;  ///< joint 1 first
  std::optional<double> cycle_s;        ///< control cycle [s]
  Transform base;                       ///< the arm's base in the frame that poses are given in
  Transform tool;                       ///< the tool frame in the arm's tip frame
};

}  // namespace qal

#endif  // QAL_MODEL_DESCRIPTION_H_
