#ifndef QAL_KINEMATICS_POSE_EULER_H_
#define QAL_KINEMATICS_POSE_EULER_H_

#include "../../core/roadpoint.h"

namespace qal {

// The operations of `Ikfunc` on Euler triples {roll, pitch, yaw} [rad]; the contracts stand there.

void QuaternionToEuler(const Ori& orientation, double* euler);
void EulerToQuaternion(const double* euler, Ori& orientation);
/// Triple of `to` minus triple of `from`, by component and never wrapped.
void EulerDifference(const Ori& from, const Ori& to, double* difference);
/// Replaces `orientation` by that of its triple plus `difference`.
void AddEuler(const double* difference, Ori& orientation);

}  // namespace qal

#endif  // QAL_KINEMATICS_POSE_EULER_H_
