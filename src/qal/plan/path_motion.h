#ifndef QAL_PLAN_PATH_MOTION_H_
#define QAL_PLAN_PATH_MOTION_H_

#include <array>
#include <optional>
#include <vector>

#include "binding.h"
#include "limited_path.h"
#include "line.h"
#include "load.h"
#include "motion.h"
#include "stretches.h"

// Internal: a motion along a path.
namespace qal {

/// Where a motion along a path is at a time, from 0 to the law's duration.
PathMoment MomentAt(const LimitedPath& path, const TimeLaw& law, double time_s);

MotionState StateAt(const LimitedPath& path, const PathMoment& moment);

/// A limit that is none.
std::optional<Error> RefusedLimits(const LineLimits& limits);

/// Sets what joints may do.
void SetJointLimits(const Arm& arm, const LimitScale& scale, PathSection& section);

ToolLimits ToolLimitsOf(const LineLimits& limits);

/// Sets the limits along a straight line.
/// @param length_m  of the tool's way in the section's path, as is the angle
void SetStraight(double length_m, double angle_rad, PathSection& section);

/// The limits that a motion runs at, told in the order of time.
class BindingMeter {
 public:
  /// Looks at a moment that stands for the time from `begin_s` to `end_s`.
  void Look(const PathPoint& joints, const PathMoment& moment, const PathSection& section,
            double begin_s, double end_s);
  /// The longest first.
  std::vector<Binding> Told(double duration_s) const;

 private:
  std::array<std::array<Stretches, 3>, 8> stretches_;  // of joints, tool and turn; by derivative
};

/// What binds is looked for once a cycle, in the middle of it.
/// @param begin_s when the motion begins
void LookThrough(const LimitedPath& path, const TimeLaw& law, double begin_s, double cycle_s,
                 BindingMeter& meter);

/// A limit and how much of it is needed.
struct NeededLimit {
  Limit limit;
  int joint;  ///< from 0; -1: not a joint's
  double part;
};

/// All limits at a moment, of joint 1 to 6, tool and turn, each of velocity, acceleration and jerk.
std::array<NeededLimit, 24> NeedsAt(const PathPoint& joints, const PathMoment& moment,
                                    const PathSection& section);

}  // namespace qal

#endif  // QAL_PLAN_PATH_MOTION_H_
