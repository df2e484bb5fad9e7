#ifndef QAL_KINEMATICS_TRAJECTORY_RAMP_WALK_H_
#define QAL_KINEMATICS_TRAJECTORY_RAMP_WALK_H_

namespace qal {

enum class RampPhase { kUp, kCruise, kDown };

/// Walks a speed ramp from standstill: 0, 1, ... `top` units up, `cruise_count` steps at the top,
/// then `top`, ... `lowest` units down. A negative `top` walks nothing but the cruise.
/// @param step called as step(phase, units); false stops the walk
/// @return false when a step has
template <typename Step>
bool WalkRamp(int top, int cruise_count, int lowest, Step step) {
  for (int units = 0; units <= top; ++units) {
    if (!step(RampPhase::kUp, units)) return false;
  }
  for (int k = 0; k < cruise_count; ++k) {
    if (!step(RampPhase::kCruise, top)) return false;
  }
  for (int units = top; units >= lowest; --units) {
    if (!step(RampPhase::kDown, units)) return false;
  }
  return true;
}

}  // namespace qal

#endif  // QAL_KINEMATICS_TRAJECTORY_RAMP_WALK_H_
