#ifndef QAL_PLAN_STEP_LIMITS_H_
#define QAL_PLAN_STEP_LIMITS_H_

#include "limited_path.h"
#include "region.h"

// Internal: what limits a motion at places of a path, and from place to place.
namespace qal {

/// How much of the limits to use.
struct Margin {
  double velocity = 1;
  double acceleration = 1;
  double jerk = 1;
};

/// The step from a place to the next, of length h in s, at a constant jerk: the acceleration
/// changes by d, in proportion to time. How far along the step that is, the reference's speeds say:
///
///     after the step     b1 = b0 + 2 h (a0 + after * d),              a1 = a0 + d
///     at half its time   b  = b0 + 2 h (place * a0 + halfway * d),    a  = a0 + d / 2
///
/// The jerk over the speed is third * b + second * a + first * d of a rate, at half the time, which
/// is at most its limit over the speed; in place of 1 / sqrt(b) its tangent `at_zero - slope * b`,
/// which is less everywhere.
struct StepLimits {
  // The rates are set by SetJerkRows.
  // cppcheck-suppress uninitMemberVar
  StepLimits() {}  // NOLINT(*-use-equals-default, *-member-init)

  double h = 0;
  double after = 0;
  double place = 0;
  double halfway = 0;
  size_t rates = 0;
  double first[LimitedRates::kMost];
  double second[LimitedRates::kMost];
  double third[LimitedRates::kMost];
  double at_zero = 0;
  double slope = 0;
  double least_square = 0;  // at half the time
};

/// By a reference's speeds at the step's ends and at half its time, whose speed is quadratic in
/// time.
StepLimits ShapeOf(double h, double v0, double half, double v1);

/// @param rates at half the step's time
void SetJerkRows(const LimitedRates& rates, const Margin& margin, StepLimits& step);

/// The states that a place allows at all, about as fast as a reference.
/// @param most_square of the speed
Region AllowedAt(const LimitedRates& rates, const Margin& margin, double most_square,
                 double reference);

/// Takes away what a rate's acceleration doesn't allow.
void CutAccelerations(const LimitedRates& rates, const Margin& margin, Region& region);

/// The state after the first step from rest, at the most jerk that it may have.
PathState FromRest(const StepLimits& step);

}  // namespace qal

#endif  // QAL_PLAN_STEP_LIMITS_H_
