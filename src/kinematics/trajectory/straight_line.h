#ifndef QAL_KINEMATICS_TRAJECTORY_STRAIGHT_LINE_H_
#define QAL_KINEMATICS_TRAJECTORY_STRAIGHT_LINE_H_

#include <vector>

#include "../solve/context.h"

namespace qal {

// The straight lines of `Ikfunc`. Their contracts stand at the members that are named; what these
// print, an observer hears.

// End points of a line have to lie within this on each axis [m] and in each quaternion component.
constexpr float kLinePairPositionM = 1.0f;
constexpr float kLinePairOrientation = 0.0001f;

// Step of a fixed-step line per unit of precision, and of five units of speed [m].
constexpr double kFixedLineStepM = 0.0002;

// A ramped line's step grows by this from cycle to cycle [m].
constexpr double kRampUnitM = 2e-5;

// How far a joint may move between two points of a ramped or an S-curve line [rad].
constexpr double kLineStepRad = 0.518;

// How far a joint may move between two points of a fixed-step line, per metre of step [rad/m]: when
// it is counted, and when it is written.
constexpr double kCountedStepFactor = 100.0;
constexpr double kFixedStepFactor = 20.0;

/// Step of a fixed-step line at a speed setting [m]; 0.00004 a unit.
constexpr double FixedLineStep(int speed) { return speed * kFixedLineStepM / 5.0; }

/// Length of the shortest line that a ramp to `speed` fits [m].
constexpr double ShortestRampedLine(int speed) { return speed * ((speed + 1.0) * kRampUnitM); }

/// `CountLineSize`.
int CountFixedLine(const Context& arm, const RoadPoint& start, RoadPoint end, int speed);
/// `CountLineToBuffer` with a count and a speed.
bool FillFixedLine(const Context& arm, RoadPoint start, RoadPoint end, int step_count,
                   RoadPoint* points, int speed);
/// `CountLineToBuffer` with a precision.
int FillFineLine(const Context& arm, const RoadPoint& start, RoadPoint end, double precision,
                 RoadPoint* points);
/// `CountLineToBuffer` into a vector.
bool PlanRampedLine(const Context& arm, const RoadPoint& start, const RoadPoint& end,
                    std::vector<RoadPoint>& road, int speed);

/// `CountSRunCurvelLineToBuffer`.
int PlanSCurveLine(const Context& arm, RoadPoint start, RoadPoint end, std::vector<RoadPoint>& road,
                   float max_acc, float max_jerk, int motor_speed_rpm);

/// `CheckRobotJointStep`: whether the arm can go from one waypoint to the next in one cycle.
bool CheckJointStep(const Context& arm, const RoadPoint& from, const RoadPoint& to,
                    int motor_speed_rpm);

}  // namespace qal

#endif  // QAL_KINEMATICS_TRAJECTORY_STRAIGHT_LINE_H_
