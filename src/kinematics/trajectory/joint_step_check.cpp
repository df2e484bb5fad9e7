#include <cmath>

#include "straight_line.h"

namespace qal {

bool CheckJointStep(const Context& arm, const RoadPoint& from, const RoadPoint& to,
                    int motor_speed_rpm) {
  const double max_speed_step = motor_speed_rpm * kShaftRadPerRpmTick * arm.numbers.ticks_per_cycle;
  for (int j = 0; j < kJointCount; ++j) {
    const double step = std::fabs(from.jointpos[j] - to.jointpos[j]);
    const double limit = max_speed_step / arm.numbers.gear_ratio[j];
    if (step > limit) {  // NaN passes
      arm.observer.Hear({Event::kJointStepTooLarge, &to, nullptr, -1, j, step, limit});
      return false;
    }
  }
  return true;
}

}  // namespace qal
