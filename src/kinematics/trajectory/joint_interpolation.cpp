#include <cmath>
#include <limits>
#include <optional>

#include "../../core/decimals.h"
#include "../arm_constants.h"
#include "../ikfunc.h"
#include "joint_walk.h"
#include "ramp_walk.h"

namespace {

// Travel of each joint [rad], between angles cut to six decimals; the largest magnitude.
double CutTravel(const RoadPoint& start, const RoadPoint& end, double* arm_run_joint) {
  double max_run_joint = 0.0;
  for (int j = 0; j < qal::kJointCount; ++j) {
    arm_run_joint[j] = Ikfunc::SectionNum(end.jointpos[j]) - Ikfunc::SectionNum(start.jointpos[j]);
    const double travel = std::fabs(arm_run_joint[j]);
    if (travel > max_run_joint) max_run_joint = travel;  // NaN is passed over
  }
  return max_run_joint;
}

// A ramped joint move: what each joint adds per cycle.
struct Ramp {
  int max_speed;                              // units per cycle at the top of the ramp
  int step_count;                             // cruise cycles
  double arm_min_run_step[qal::kJointCount];  // one ramp unit [rad]
  double arm_max_run_step[qal::kJointCount];  // one cruise step [rad]
};

// The ramp that reaches `max_speed`, with a cruise for what is left of the travel; nothing when the
// cruise's count doesn't fit an int.
std::optional<Ramp> Trapezoid(const double* arm_run_joint, double max_run_joint, int max_speed,
                              double min_distance) {
  const double max_speed_dis = max_run_joint - min_distance;
  const double min_speed_change_dis = min_distance * 0.5;
  const std::optional<int> step_count =
      qal::TruncateToInt(max_speed_dis / (qal::kJointRampUnitRad * max_speed));
  if (!step_count) return std::nullopt;
  Ramp ramp{max_speed, *step_count, {}, {}};
  for (int j = 0; j < qal::kJointCount; ++j) {
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
  const double temp = max_run_joint / qal::kJointRampUnitRad;
  // The largest n with n (n + 1) <= temp, which the profile chosen before keeps inside an int.
  const int max_speed = static_cast<int>((std::sqrt(temp * 4 + 1) - 1) * 0.5);
  Ramp ramp{max_speed, 0, {}, {}};
  for (int j = 0; j < qal::kJointCount; ++j) {
    ramp.arm_min_run_step[j] = (arm_run_joint[j] / (max_speed + 1)) / max_speed;
  }
  return ramp;
}

}  // namespace

int Ikfunc::CountCurvelLineSize(RoadPoint s_point, RoadPoint e_point, int speed) {
  constexpr int kNoMove = 0;
  if (speed < 1) return kNoMove;
  double arm_run_joint[qal::kJointCount];
  const double max_run_joint = CutTravel(s_point, e_point, arm_run_joint);
  // Held in single precision: its digits decide the count where the travel is a whole number of
  // steps.
  const float step = static_cast<float>(speed * qal::kJointMoveStepRad / 10.0);
  const std::optional<int> steps = qal::TruncateToInt(max_run_joint / static_cast<double>(step));
  if (!steps || *steps == std::numeric_limits<int>::max()) return kNoMove;
  return *steps + 1;
}

bool Ikfunc::CountCurveLineToBuffer(RoadPoint s_point, RoadPoint e_point, int step_count,
                                    RoadPoint* point_array) {
  if (step_count < 1) return false;
  for (int i = 0; i < step_count - 1; ++i) {
    RoadPoint point = point_array[i];
    for (int j = 0; j < qal::kJointCount; ++j) {
      const double dst = e_point.jointpos[j] - s_point.jointpos[j];
      point.jointpos[j] = dst * i / step_count + s_point.jointpos[j];
    }
    (void)ArmFk(point);  // on failure the element keeps the pose it had
    point_array[i] = point;
  }
  point_array[step_count - 1] = e_point;
  return true;
}

bool Ikfunc::CountCurvelLineToBuffer(RoadPoint s_point, RoadPoint e_point,
                                     std::vector<RoadPoint>* point_road, int speed) {
  // A move shorter than two ramp units has no room for a ramp [rad].
  constexpr double kShortestRampRad = 2 * qal::kJointRampUnitRad;
  const int max_speed = speed / 2;
  if (max_speed < 1) return false;
  double arm_run_joint[qal::kJointCount];
  const double max_run_joint = CutTravel(s_point, e_point, arm_run_joint);
  // A full ramp up and down: 2 * (1 + 2 + ... + max_speed) units.
  const double min_distance = (max_speed + 1) * qal::kJointRampUnitRad * max_speed;

  std::optional<Ramp> ramp;
  if (max_run_joint >= min_distance) {
    ramp = Trapezoid(arm_run_joint, max_run_joint, max_speed, min_distance);
    if (!ramp) return false;
  } else if (max_run_joint >= kShortestRampRad) {
    ramp = Triangle(arm_run_joint, max_run_joint);
  } else {
    qal::ReplaceByEndPoints(s_point, e_point, *point_road);
    return true;
  }

  point_road->clear();
  point_road->reserve(2 * static_cast<size_t>(ramp->max_speed) +
                      static_cast<size_t>(ramp->step_count) + 1);
  RoadPoint temp_point = s_point;
  const auto advance = [&](qal::RampPhase phase, int units) {
    for (int j = 0; j < qal::kJointCount; ++j) {
      temp_point.jointpos[j] += phase == qal::RampPhase::kCruise
                                    ? ramp->arm_max_run_step[j]
                                    : units * ramp->arm_min_run_step[j];
    }
    qal::AppendWithPose(temp_point, *point_road);
    return true;
  };
  // Down to two units: the step to the end point is the last of the ramp.
  (void)qal::WalkRamp(ramp->max_speed, ramp->step_count, 2, advance);
  point_road->push_back(e_point);
  return true;
}
