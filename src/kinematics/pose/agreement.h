#ifndef QAL_KINEMATICS_POSE_AGREEMENT_H_
#define QAL_KINEMATICS_POSE_AGREEMENT_H_

#include <cmath>

#include "../../core/roadpoint.h"

namespace qal {

/// Whether coordinates agree within `position_m` and quaternion components within `component`; see
/// `Ikfunc::PositionCompare`.
bool PosesAgree(const RoadPoint& a, const RoadPoint& b, float position_m, float component);
/// Whether joints agree within `joint_rad`, in single precision; see `Ikfunc::JointCompare`.
bool JointsAgree(const double* a, const double* b, float joint_rad);
/// Whether joints agree within half a degree, in double precision; see `Ikfunc::PointAngTest`.
bool JointsAgreeToHalfADegree(const double* a, const double* b);

/// sqrt(a^2 + b^2 + c^2 + d^2), summed in this order.
inline double Norm(double a, double b, double c, double d) {
  return std::sqrt(a * a + b * b + c * c + d * d);
}

/// The length of a displacement [m].
inline double LengthOf(const Pos& v) { return Norm(v.x, v.y, v.z, 0); }

}  // namespace qal

#endif  // QAL_KINEMATICS_POSE_AGREEMENT_H_
