#ifndef QAL_PLAN_PATH_LIMITS_H_
#define QAL_PLAN_PATH_LIMITS_H_

#include "../model/pose.h"

// Internal: what limits a motion along a path.
namespace qal {

/// Limits of a motion along a path: of the parameter s itself, and of each joint.
struct PathLimits {
  double speed;
  double acceleration;
  double jerk;
  Joints joint_velocity;
  Joints joint_acceleration;
  Joints joint_jerk;
};

}  // namespace qal

#endif  // QAL_PLAN_PATH_LIMITS_H_
