#ifndef QAL_KINEMATICS_TRAJECTORY_JOINT_MOVE_H_
#define QAL_KINEMATICS_TRAJECTORY_JOINT_MOVE_H_

#include <optional>
#include <vector>

#include "../solve/context.h"

namespace qal {

// The joint moves of `Ikfunc`. Their contracts stand at the members that are named; what these
// print, an observer hears.

// ---- All joints in proportion ----

/// `CountCurvelLineSize`.
int CountFixedMove(const RoadPoint& start, const RoadPoint& end, int speed);
/// `CountCurveLineToBuffer`.
bool FillFixedMove(const Context& arm, const RoadPoint& start, const RoadPoint& end, int step_count,
                   RoadPoint* points);
/// `CountCurvelLineToBuffer`.
bool PlanRampedMove(const Context& arm, const RoadPoint& start, const RoadPoint& end,
                    std::vector<RoadPoint>& road, int speed);

// ---- Synchronised trapezoids ----

// The step table's cycle counts are squared in 32 bits: no synchronised move may be longer.
constexpr int kLongestRunCycles = 46340;

/// `countjointdis`.
void RunTravels(const ArmNumbers& numbers, const RoadPoint& start, const RoadPoint& end,
                float* travels);
/// `countmaxruntime`; nothing where that is 0 for a limit, or for a count beyond an int.
std::optional<int> FastestCycles(const ArmNumbers& numbers, double travel, double motor_speed_rpm,
                                 int motor_acc, double step_time, double gear_ratio);
/// `CountRunCurvelLineSize`; nothing where that is 0 for a limit, or for a count beyond an int.
std::optional<int> RunCycles(const ArmNumbers& numbers, const RoadPoint& start,
                             const RoadPoint& end, int speed, int max_acc);
/// `caltimeslover`.
int CruiseCycles(const ArmNumbers& numbers, int n, double travel, double step_time,
                 double gear_ratio, int acc);
/// `getJointStepLength`. @param joint from 0 to 5
void JointSteps(const ArmNumbers& numbers, float travel, int cycles, int cruise_cycles, int joint,
                double* steps);
/// `CountRunCurvelLineToBuffer`.
bool PlanRun(const Context& arm, const RoadPoint& start, const RoadPoint& end,
             std::vector<RoadPoint>& road, int speed, int max_acc);

}  // namespace qal

#endif  // QAL_KINEMATICS_TRAJECTORY_JOINT_MOVE_H_
