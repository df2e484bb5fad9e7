#ifndef QAL_PLAN_PATH_SPEED_H_
#define QAL_PLAN_PATH_SPEED_H_

#include <vector>

#include "joint_path.h"
#include "region.h"

// Internal: what limits a motion along a path, and the fastest states that keep them.
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

/// A motion from rest to rest along a path, by its speeds at places.
struct Draft {
  std::vector<double> places;  ///< from s = 0 to 1
  std::vector<double> speed;   ///< there; at the ends 0
  std::vector<double> half;    ///< at half the time between two places
};

/// How much of the limits to use from one place to the next.
struct Margin {
  double acceleration = 1;
  double jerk = 1;
};

/// At each place the state of the fastest motion from rest to rest. From place to place the jerk is
/// constant.
/// @param draft  a motion that is about as fast: the closer, the better the answer, which keeps the
///               limits whatever it is
/// @param margin of each step from place to place
/// @return empty where there is none, for want of digits
std::vector<PathState> FastestStates(const JointPath& path, const PathLimits& limits,
                                     const Draft& draft, const std::vector<Margin>& margin);

}  // namespace qal

#endif  // QAL_PLAN_PATH_SPEED_H_
