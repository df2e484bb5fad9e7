#include <cmath>
#include <limits>
#include <optional>

#include "../../core/decimals.h"
#include "joint_move.h"
#include "joint_walk.h"
#include "ramp_walk.h"

namespace qal {

namespace {

// A fixed-step move advances its leading joint by this per ten units of speed: 0.1 degree [rad].
constexpr double kFixedMoveStepRad = 0.001745329;

// A ramped move's leading step grows by this from cycle to cycle: 0.01 degree [rad].
constexpr double kRampUnitRad = 0.0001745329;

// Travel of each joint [rad], between angles cut to six decimals; the largest magnitude.
double CutTravel(const RoadPoint& start, const RoadPoint& end, double* arm_run_joint) {
  double max_run_joint = 0.0;
  for (int j = 0; j < kJointCount; ++j) {
    arm_run_joint[j] = CutSixDecimals(end.jointpos[j]) - CutSixDecimals(start.jointpos[j]);
    const double travel = std::fabs(arm_run_joint[j]);
    if (travel > max_run_joint) max_run_joint = travel;  // NaN is passed over
  }
  return max_run_joint;
}

// A ramped joint move: what each joint adds per cycle.
struct Ramp {
  int max_speed;                         // units per cycle at the top of the ramp
  int step_count;                        // cruise cycles
  double arm_min_run_step[kJointCount];  // one ramp unit [rad]
  double arm_max_run_step[kJointCount];  // one cruise step [rad]
};

// The ramp that reaches `max_speed`, with a cruise for what is left of the travel; nothing when the
// cruise's count doesn't fit an int.
std::optional<Ramp> Trapezoid(const double* arm_run_joint, double max_run_joint, int max_speed,
                              double min_distance) {
  const double max_speed_dis = max_run_joint - min_distance;
  const double min_speed_change_dis = min_distance * 0.5;
  const std::optional<int> step_count = TruncateToInt(max_speed_dis / (kRampUnitRad * max_speed));
  if (!step_count) return std::nullopt;
  Ramp ramp{max_speed, *step_count, {}, {}};
  for (int j = 0; j < kJointCount; ++j) {
    ramp.arm_min_run_step[j] =
        ((arm_run_joint[j] * (min_speed_change_dis / max_run_joint)) * 2 / (max_speed + 1)) /
        max_speed;
    if (*step_count > 0) {
      ramp.arm_max_run_step[j] = (arm_run_joint[j] * (max_speed_dis / max_run_joint)) / *step_count;
    }
  }
  return ramp;
}

// The highest ramp that the travel has room for; at least two units of travel give at least 1.
Ramp Triangle(const double* arm_run_joint, double max_run_joint) {
  const double temp = max_run_joint / kRampUnitRad;
  // The largest n with n (n + 1) <= temp, which the profile chosen before keeps inside an int.
  const int max_speed = static_cast<int>((std::sqrt(temp * 4 + 1) - 1) * 0.5);
  Ramp ramp{max_speed, 0, {}, {}};
  for (int j = 0; j < kJointCount; ++j) {
    ramp.arm_min_run_step[j] = (arm_run_joint[j] / (max_speed + 1)) / max_speed;
  }
  return ramp;
}

}  // namespace

int CountFixedMove(const RoadPoint& start, const RoadPoint& end, int speed) {
  constexpr int kNoMove = 0;
  if (speed < 1) return kNoMove;
  double arm_run_joint[kJointCount];
  const double max_run_joint = CutTravel(start, end, arm_run_joint);
  // Held in single precision: its digits decide the count where the travel is a whole number of
  // steps.
  const float step = static_cast<float>(speed * kFixedMoveStepRad / 10.0);
  const std::optional<int> steps = TruncateToInt(max_run_joint / static_cast<double>(step));
  if (!steps || *steps == std::numeric_limits<int>::max()) return kNoMove;
  return *steps + 1;
}

bool FillFixedMove(const Context& arm, const RoadPoint& start, const RoadPoint& end, int step_count,
                   RoadPoint* points) {
  if (step_count < 1) return false;
  for (int i = 0; i < step_count - 1; ++i) {
    RoadPoint point = points[i];
    for (int j = 0; j < kJointCount; ++j) {
      const double dst = end.jointpos[j] - start.jointpos[j];
      point.jointpos[j] = dst * i / step_count + start.jointpos[j];
    }
    (void)ForwardPose(arm, point);  // on failure the element keeps the pose it had
    points[i] = point;
  }
  points[step_count - 1] = end;
  return true;
}

bool PlanRampedMove(const Context& arm, const RoadPoint& start, const RoadPoint& end,
                    std::vector<RoadPoint>& road, int speed) {
  // A move shorter than two ramp units has no room for a ramp [rad].
  constexpr double kShortestRampRad = 2 * kRampUnitRad;
  const int max_speed = speed / 2;
  if (max_speed < 1) return false;
  double arm_run_joint[kJointCount];
  const double max_run_joint = CutTravel(start, end, arm_run_joint);
  // A full ramp up and down: 2 * (1 + 2 + ... + max_speed) units.
  const double min_distance = (max_speed + 1) * kRampUnitRad * max_speed;

  std::optional<Ramp> ramp;
  if (max_run_joint >= min_distance) {
    ramp = Trapezoid(arm_run_joint, max_run_joint, max_speed, min_distance);
    if (!ramp) return false;
  } else if (max_run_joint >= kShortestRampRad) {
    ramp = Triangle(arm_run_joint, max_run_joint);
  } else {
    ReplaceByEndPoints(start, end, road);
    return true;
  }

  road.clear();
  road.reserve(2 * static_cast<size_t>(ramp->max_speed) + static_cast<size_t>(ramp->step_count) +
               1);
  RoadPoint temp_point = start;
  const auto advance = [&](RampPhase phase, int units) {
    for (int j = 0; j < kJointCount; ++j) {
      temp_point.jointpos[j] += phase == RampPhase::kCruise ? ramp->arm_max_run_step[j]
                                                            : units * ramp->arm_min_run_step[j];
    }
    AppendWithPose(arm, temp_point, road);
    return true;
  };
  // Down to two units: the step to the end point is the last of the ramp.
  (void)WalkRamp(ramp->max_speed, ramp->step_count, 2, advance);
  road.push_back(end);
  return true;
}

}  // namespace qal
