#ifndef QAL_MODEL_CHAIN_H_
#define QAL_MODEL_CHAIN_H_

/// @file
/// The chain of a described arm: its tip frame, its axes, its reach.

#include <array>

#include "../../core/export.h"
#include "description.h"

namespace qal {

/// `inner`, which is given in `outer`, as `outer` is seen from.
QAL_API Transform operator*(const Transform& outer, const Transform& inner);

/// The rotation by an angle [rad] about a unit axis, at the origin: Rodrigues' formula,
/// R = cos * I + sin * [axis]x + (1 - cos) * axis axis^T.
QAL_API Transform RotationAbout(const Vec3& axis, double angle_rad);

/// Rotations about the fixed x, y and z axes, in this order [rad], at the origin:
/// R = Rz(rpy.z) * Ry(rpy.y) * Rx(rpy.x).
QAL_API Transform FromRollPitchYaw(const Vec3& rpy_rad);

/// The tip frame of six joints [rad] in the base frame: the product of the described transforms.
QAL_API Transform TipFrame(const ArmDescription& arm, const Joints& joints);

/// A joint axis with all joints at zero, in the base frame.
struct AxisLine {
  Vec3 point;      ///< the joint's origin [m]
  Vec3 direction;  ///< of length 1
};

/// The axes of all joints, joint 1 first, with all joints at zero, in the base frame.
QAL_API std::array<AxisLine, 6> AxesAtZero(const ArmDescription& arm);

/// From joint 1 along all joints to the tip [m]: what the arm reaches at the most.
QAL_API double LongestReach(const ArmDescription& arm);

}  // namespace qal

#endif  // QAL_MODEL_CHAIN_H_
