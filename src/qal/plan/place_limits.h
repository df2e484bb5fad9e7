#ifndef QAL_PLAN_PLACE_LIMITS_H_
#define QAL_PLAN_PLACE_LIMITS_H_

#include <cmath>

#include "limited_path.h"
#include "step_limits.h"
#include "time_law.h"

// Internal: what a place of a path allows a motion.
namespace qal {

/// Numbers from one to another; none where `low` is above `high`.
struct Range {
  double low = -kNoLimit;
  double high = kNoLimit;

  bool empty() const { return !(low <= high); }
  bool Holds(double x) const { return low <= x && x <= high; }
  void Meet(double least, double most) {
    if (least > low) low = least;
    if (most < high) high = most;
  }
  void Meet(const Range& other) { Meet(other.low, other.high); }
};

/// The accelerations and jerks of the path's parameter that limits of joints and tool allow at a
/// place. Those of velocity are left to the plan: a motion that is no faster keeps them.
class PlaceLimits {
 public:
  // What is beyond the tool's vectors that there are is neither set nor read.
  PlaceLimits() {}  // NOLINT(*-use-equals-default, *-member-init)
  /// @param use how much of the limits
  PlaceLimits(const PathPoint& joints, const PathSection& section, const Margin& use);

  /// Keeps to the limits of an earlier section as well, on whose end a motion has come here.
  void MeetEarlier(const PathSection& section, double end, const Margin& use);

  /// Those halfway between two places, a way `h` apart, about; the limits are the second one's.
  static PlaceLimits Halfway(const PlaceLimits& from, const PlaceLimits& to, double h);

  Range Accelerations(double speed) const;
  /// Of a jerk that is held for a while.
  /// @param acceleration when that begins
  /// @param after_s      the while: the limits are those after it, as is the speed
  Range Jerks(double speed, double acceleration, double after_s) const;

  /// How much of the limits of acceleration is needed, as a multiple.
  double AccelerationNeed(double speed, double acceleration) const;

  bool Allow(const PathMoment& moment) const {
    return Accelerations(moment.speed).Holds(moment.acceleration) &&
           Jerks(moment.speed, moment.acceleration, 0).Holds(moment.jerk);
  }

 private:
  void AddTool(const PathSection& section, double s, const Margin& use);

  struct Vector {
    Vector3 first;
    Vector3 second;
    Vector3 third;
    double acceleration;  // limit of its length, as is the next
    double jerk;
  };

  // Of six joints, and in the end of s itself.
  double first_[7];
  double second_[7];
  double third_[7];
  double acceleration_[7];
  double jerk_[7];
  Vector vector_[2];  // of the tool
  size_t vectors_ = 0;
};

}  // namespace qal

#endif  // QAL_PLAN_PLACE_LIMITS_H_
