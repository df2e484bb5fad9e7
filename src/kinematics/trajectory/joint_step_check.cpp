#include "joint_step_check.h"

#include <cmath>

#include "../arm_constants.h"
#include "../diagnostics.h"
#include "../ikfunc.h"

namespace qal {

bool CheckJointStep(const RoadPoint& from, const RoadPoint& to, int motor_speed_rpm) {
  const double max_speed_step = motor_speed_rpm * kShaftRadPerRpmTick * kTicksPerCycle;
  for (int i = 0; i < kJointCount; ++i) {
    const double step = std::fabs(from.jointpos[i] - to.jointpos[i]);
    const double limit = max_speed_step / GearRatio(i);
    if (step > limit) {  // NaN passes
      WriteLine(i < kBigAxisCount ? kBigStepLine : kSmallStepLine, step);
      WriteLine(kStepLimitLine, limit);
      return false;
    }
  }
  return true;
}

}  // namespace qal

bool Ikfunc::CheckRobotJointStep(RoadPoint& point1, RoadPoint& point2, int max_joint_speed_rpm) {
  return qal::CheckJointStep(point1, point2, max_joint_speed_rpm);
}
