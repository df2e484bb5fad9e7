#ifndef QAL_KINEMATICS_SOLVE_INVERSE_H_
#define QAL_KINEMATICS_SOLVE_INVERSE_H_

#include "../../core/roadpoint.h"
#include "context.h"

namespace qal {

// The operations of `Ikfunc` that query the solver and choose. Their contracts stand at the members
// that are named; what these print, an observer hears. `joints` are 6 reference joints [rad], which
// may be the waypoint's own.

// Poses closer than this count as one: coordinates [m] and quaternion components, both judged in
// single precision.
constexpr float kSamePositionM = 1e-5f;
constexpr float kSameOrientation = 0.0001f;

// How far a joint may be from the configuration that a point is held at: five times 0.00872664,
// about 2.5 degrees [rad].
constexpr double kHoldStepRad = 0.043633200000000004;

// A jog may move each joint this many radians per unit of its step [rad/m or rad/rad].
constexpr double kJogStepFactor = 1000.0;

/// `ArmIk`: without a step bound.
bool SolveNearest(const Context& arm, RoadPoint& point, const double* joints);

/// `ArmJointIk` of a waypoint, within a step bound of `joints`.
bool SolveWithin(const Context& arm, RoadPoint& point, const double* joints, double step_bound_rad);

/// `ArmJointIk` of two waypoints: solves `target` within a step bound of `current`'s joints.
bool SolveFrom(const Context& arm, const RoadPoint& current, RoadPoint& target,
               double step_bound_rad);

/// `ArmLineMoveIk`: `point` was reached by the straight step `step`.
bool SolveLineStep(const Context& arm, RoadPoint& point, const Pos& step, const double* joints,
                   double step_bound_rad);

/// `ArmIk` of a jog.
bool SolveJog(const Context& arm, const RoadPoint& current, int coordinate, int move_mode,
              double step, RoadPoint& result);

/// `ChekcArmPointok`: whether the joints have the position.
bool JointsHavePosition(const Context& arm, const RoadPoint& point);

/// `ArmCheckAndCountSimilarIk`: moves a waypoint out of reach to one close to its joints.
bool MoveWithinReach(const Context& arm, RoadPoint& point);

}  // namespace qal

#endif  // QAL_KINEMATICS_SOLVE_INVERSE_H_
