#ifndef QAL_PLAN_AXIS_MOVE_H_
#define QAL_PLAN_AXIS_MOVE_H_

#include "axis_motion.h"

namespace qal {

/// How a move from rest to rest spends its time: jerk, hold, jerk back, cruise, and the same
/// mirrored. Any of them may be 0.
struct SevenPhases {
  double jerk_s;    ///< each of four phases in which the acceleration changes
  double hold_s;    ///< each of two in which it is held
  double cruise_s;  ///< at constant velocity

  double duration_s() const { return 4 * jerk_s + 2 * hold_s + cruise_s; }
};

/// The fastest move over `distance`, of either sign, that keeps the limits.
SevenPhases FastestPhases(double distance, const AxisLimits& limits);

/// The same move in slow motion, so that it takes `duration_s`, exactly, which is at least its own.
SevenPhases SlowedPhases(const SevenPhases& fastest, double duration_s);

/// Appends the pieces of the move from rest at `from` to rest at `from + distance` to `motion`: the
/// seven phases, or a single one when there is no distance. Times are exact, the jerk follows from
/// them, and each rate is the phases' own to a few roundings.
void AddPieces(const SevenPhases& phases, double from, double distance, AxisMotion& motion);

}  // namespace qal

#endif  // QAL_PLAN_AXIS_MOVE_H_
