#ifndef QAL_SOLVE_POSTURE_H_
#define QAL_SOLVE_POSTURE_H_

#include <optional>

#include "../model/lines.h"
#include "kinematics.h"

// Internal: how an arm stands, with the signs that tell its branches apart.
namespace qal {

/// Measures of an arm with a spherical wrist or three parallel axes. Each is 0 at its singularity
/// and has another sign beyond it.
struct Posture {
  Vector3 forward;    ///< away from axis 1, at a right angle to axis 2; of length 1
  double shoulder_m;  ///< of the wrist's centre, along `forward`
  double offset_m;    ///< of axis 2 from axis 1, along `forward`
  Vector3 shoulder;   ///< the point of axis 2 nearest axis 1
  Vector3 upward;     ///< along axis 1, as it points
  double elbow_rad;   ///< from upper arm to forearm, about what takes `upward` to `forward`
  double wrist_rad;   ///< from axis 4 to axis 6, about axis 5
};

/// @param tool_centre the place of the tool centre point that the Jacobian is of
/// @return nothing for another arm
std::optional<Posture> PostureOf(const JacobianMatrix& jacobian, const Vector3& tool_centre);

}  // namespace qal

#endif  // QAL_SOLVE_POSTURE_H_
