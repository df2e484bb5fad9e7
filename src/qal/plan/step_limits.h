#ifndef QAL_PLAN_STEP_LIMITS_H_
#define QAL_PLAN_STEP_LIMITS_H_

#include "joint_path.h"
#include "path_limits.h"
#include "region.h"

// Internal: what limits a motion at places of a path, and from place to place.
namespace qal {

constexpr size_t kLimitedRates = 7;  ///< six joints, and s itself

/// What may be at a place: b is the square of the speed, a the acceleration.
struct PlaceLimits {
  double most_square;
  double first[kLimitedRates];  // |second * b + first * a| <= 1
  double second[kLimitedRates];
};

/// The step from a place to the next, of length h in s, at a constant jerk: the acceleration
/// changes by d, in proportion to time. How far along the step that is, the reference's speeds say:
///
///     after the step     b1 = b0 + 2 h (a0 + after * d),              a1 = a0 + d
///     at half its time   b  = b0 + 2 h (place * a0 + halfway * d),    a  = a0 + d / 2
///
/// The jerk over the speed is third * b + second * a + first * d of a joint, at half the time,
/// which is at most its limit over the speed; in place of 1 / sqrt(b) its tangent `at_zero - slope
/// * b`, which is less everywhere.
struct StepLimits {
  double h;
  double after;
  double place;
  double halfway;
  double first[kLimitedRates];
  double second[kLimitedRates];
  double third[kLimitedRates];
  double at_zero;
  double slope;
  double least_square;  // at half the time
};

/// @param margin how much of the accelerations to use
PlaceLimits LimitsAt(const PathPoint& joints, const PathLimits& limits, double margin);

/// By a reference's speeds at the step's ends and at half its time, whose speed is quadratic in
/// time.
StepLimits ShapeOf(double h, double v0, double half, double v1);

/// @param joints at half the step's time
/// @param margin how much of the jerks to use
void SetJerkRows(const PathPoint& joints, const PathLimits& limits, double margin,
                 StepLimits& step);

/// The states that a place allows at all, about as fast as a reference.
Region AllowedAt(const PlaceLimits& at, double reference);

/// The state after the first step from rest, at the most jerk that it may have.
PathState FromRest(const StepLimits& step);

}  // namespace qal

#endif  // QAL_PLAN_STEP_LIMITS_H_
