#ifndef QAL_PLAN_STEP_BOUNDS_H_
#define QAL_PLAN_STEP_BOUNDS_H_

#include <algorithm>
#include <cmath>

#include "step_limits.h"

// Internal: from which states a step leads where it should.
namespace qal {

/// Bounds of one side of a number: each linear in a state.
class Side {
 public:
  // What is beyond the bounds that there are is neither set nor read.
  // cppcheck-suppress uninitMemberVar
  Side() {}  // NOLINT(modernize-use-equals-default): that one would set it

  void Add(double bound, double square, double acceleration) {
    bound_[count_] = bound;
    square_[count_] = square;
    acceleration_[count_] = acceleration;
    ++count_;
  }
  double At(size_t i, const PathState& state) const {
    return bound_[i] - square_[i] * state.square - acceleration_[i] * state.acceleration;
  }
  /// The least bound at a state, and which it is.
  double Least(const PathState& state) const {
    // Two at a time: the processor has them both under way.
    double even = HUGE_VAL;
    double odd = HUGE_VAL;
    size_t i = 0;
    for (; i + 1 < count_; i += 2) {
      even = std::min(even, At(i, state));
      odd = std::min(odd, At(i + 1, state));
    }
    if (i < count_) even = std::min(even, At(i, state));
    return std::min(even, odd);
  }
  size_t IndexOfLeast(const PathState& state) const {
    size_t least = 0;
    for (size_t i = 1; i < count_; ++i) {
      if (At(i, state) < At(least, state)) least = i;
    }
    return least;
  }
  /// Where the sum of two bounds is not negative.
  friend HalfPlane BothHold(const Side& a, size_t i, const Side& b, size_t j) {
    return {a.square_[i] + b.square_[j], a.acceleration_[i] + b.acceleration_[j],
            a.bound_[i] + b.bound_[j]};
  }

 private:
  static constexpr size_t kMost = 2 * LimitedRates::kMost + 1 + Region::kFewCorners;

  size_t count_ = 0;
  double bound_[kMost];
  double square_[kMost];
  double acceleration_[kMost];
};

/// What bounds the change d of a step, seen from the state before it. Of jerk rows there are two
/// each; one row keeps the motion going, and one for each edge of the region after the step leads
/// into it.
class Bounds {
 public:
  Bounds(const StepLimits& step, const Region& after);

  double Low(const PathState& state) const { return -below_.Least(state); }
  double High(const PathState& state) const { return above_.Least(state); }

  /// Takes away the states from which no d is possible.
  void CutImpossible(Region& region) const;

 private:
  // factor * d <= bound - square * b - acceleration * a.
  void Add(double factor, const HalfPlane& right) {
    if (factor == 0) return;
    const double inverse = 1 / std::fabs(factor);
    (factor > 0 ? above_ : below_)
        .Add(inverse * right.bound, inverse * right.square, inverse * right.acceleration);
  }

  Side above_;  // of d
  Side below_;  // of -d
};

}  // namespace qal

#endif  // QAL_PLAN_STEP_BOUNDS_H_
