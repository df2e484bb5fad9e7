#ifndef QAL_PLAN_MOTION_H_
#define QAL_PLAN_MOTION_H_

/// @file
/// States and samples of motions, and why there is none.

#include <vector>

#include "../model/arm.h"

namespace qal {

/// Six joints at a moment of a motion. At rest, the rates are 0.
struct MotionState {
  Joints joints = {};         ///< [rad]
  Joints velocities = {};     ///< [rad/s]
  Joints accelerations = {};  ///< [rad/s^2]
};

/// How much of its arm's limits a motion may use: above 0, up to 1.
struct LimitScale {
  double velocity = 1;      ///< of each joint's velocity
  double acceleration = 1;  ///< of each joint's acceleration
  double jerk = 1;          ///< of each joint's jerk
};

/// One sample of a trajectory.
struct Sample {
  double time_s;         ///< from the start of the trajectory
  Joints joints;         ///< [rad]
  Joints velocities;     ///< [rad/s], the motion's own, not differences
  Joints accelerations;  ///< [rad/s^2], likewise
  Pose pose;             ///< of the joints
};

/// A motion as a controller plays it: samples one cycle of the arm apart, the first at time 0 and
/// exactly the start, the last exactly the end. A motion whose duration is no whole number of
/// cycles is slowed down by the fraction.
using Trajectory = std::vector<Sample>;

/// Why there is no motion, and how far there would be one.
struct PlanFailure {
  Error error;        ///< the reason, the joint, what would be needed and what is allowed
  double along = 0;   ///< where on the way, from 0 to 1
  State before = {};  ///< the last joints and pose that the motion reaches
};

}  // namespace qal

#endif  // QAL_PLAN_MOTION_H_
