#ifndef QAL_TOOLS_ARM_ARM_H_
#define QAL_TOOLS_ARM_ARM_H_

#include <array>
#include <optional>
#include <string>

#include "../../solver/closed_form/geometry.h"

namespace qal::tools {

using closed_form::Frame;
using closed_form::kPi;
using Vector3 = closed_form::Vector<double>;
using Matrix3 = closed_form::Matrix<double>;

constexpr Frame kIdentity = {{{{{1, 0, 0}}, {{0, 1, 0}}, {{0, 0, 1}}}}, {{0, 0, 0}}};

/// `inner` as `outer` is seen from.
Frame operator*(const Frame& outer, const Frame& inner);

double Length(const Vector3& v);

/// The rotation by an angle [rad] about a unit axis.
Matrix3 RotationAbout(const Vector3& axis, double angle);

/// Turns about the fixed x, y and z axes, in this order [rad].
Matrix3 FromRollPitchYaw(const Vector3& rpy);

struct JointLimits {
  double lower;  ///< [rad]
  double upper;  ///< [rad], not below `lower`
};

struct ArmJoint {
  std::string name;
  Frame origin;  ///< the joint's frame at zero, in the frame that the joint before turns; [m]
  Vector3 axis;  ///< unit axis in the joint's frame
  std::optional<JointLimits> limits;  ///< none: turns without end
};

/// An arm as somebody described it: six revolute joints between a base and a tip frame.
struct Arm {
  std::string name;
  std::string base;  ///< what the frames are called where the description names them
  std::string tip;
  std::array<ArmJoint, 6> joints;
  Frame tip_in_last = kIdentity;  ///< the tip frame in the frame that joint 6 turns
  /// Angles that look like a multiple of 15 degrees rounded to some digits, such as 1.5708. Read as
  /// written or as the multiple, as was asked for.
  int rounded_angles = 0;
};

/// The tip frame of six joints [rad]: the product of the described transforms.
Frame TipFrame(const Arm& arm, const std::array<double, 6>& joints);

/// A joint axis with all joints at zero, in the base frame.
struct AxisLine {
  Vector3 point;
  Vector3 direction;
};

std::array<AxisLine, 6> AxesAtZero(const Arm& arm);

/// The way from joint 1 along all joints to the tip [m]: what the arm reaches at the most.
double LongestReach(const Arm& arm);

}  // namespace qal::tools

#endif  // QAL_TOOLS_ARM_ARM_H_
