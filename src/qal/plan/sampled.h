#ifndef QAL_PLAN_SAMPLED_H_
#define QAL_PLAN_SAMPLED_H_

/// @file
/// What a controller plays: samples of a motion, one cycle apart.

#include "joint_move.h"
#include "line.h"
#include "program.h"

namespace qal {

/// The most samples of a trajectory.
constexpr double kMostSamples = 1e6;

/// A joint move as a controller plays it, planned again to take a whole number of `arm`'s cycles:
/// the fewest that it can.
/// @param arm    the one that it was planned for
/// @param motion as planned
/// @return the samples; kTooManyPoints for more than `kMostSamples`; the errors of `PlanJoint`,
/// where the slower
///         move leaves a joint's range and the quicker one doesn't; kNoPose, kSolverThrows
QAL_API Result<Trajectory, PlanFailure> Sampled(const Arm& arm, const JointMotion& motion);

/// A line as a controller plays it; where it ends between two cycles, it is slowed down to end at
/// the later one.
/// @param arm    the one that it was planned for
/// @param motion as planned
/// @return the samples; kTooManyPoints for more than `kMostSamples`
QAL_API Result<Trajectory, PlanFailure> Sampled(const Arm& arm, const LineMotion& motion);

/// A program as a controller plays it.
/// @param arm    the one that it was planned for
/// @param motion as planned
/// @return the samples; kTooManyPoints for more than `kMostSamples`
QAL_API Result<Trajectory, PlanFailure> Sampled(const Arm& arm, const ProgramMotion& motion);

}  // namespace qal

#endif  // QAL_PLAN_SAMPLED_H_
