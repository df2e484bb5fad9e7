#ifndef QAL_PLAN_LAW_STATES_H_
#define QAL_PLAN_LAW_STATES_H_

#include <vector>

#include "region.h"
#include "time_law.h"

// Internal: laws by their states from place to place.
namespace qal {

/// States at places.
struct LawStates {
  std::vector<double> places;
  std::vector<PathState> states;  ///< at rest in the end
};

/// Those where a law's pieces begin, and rest at its end.
LawStates StatesOf(const TimeLaw& law);

/// The motion through states, from place to place at a jerk that is constant but for rounding and
/// for what the states don't fit together.
TimeLaw LawOf(const LawStates& states_at);

/// A step from 0 to 1 that is smooth at both ends, x from 0 to 1.
struct SmoothStep {
  explicit SmoothStep(double x)
      : value(x * x * x * (10 - x * (15 - 6 * x))), slope(30 * x * x * (1 - x) * (1 - x)) {}
  double value;
  double slope;  ///< by x
};

/// A factor of a speed, and its derivative by time.
struct SpeedFactor {
  double factor = 1;
  double rate = 0;
};

/// A law with its speed times a factor of its own time. With f and its derivative f' by that, the
/// acceleration is f^2 a + f f' v.
template <class FactorAt>
TimeLaw Scaled(const TimeLaw& law, const FactorAt& factor_at) {
  LawStates scaled = StatesOf(law);
  for (size_t k = 0; k < law.size(); ++k) {
    const auto [factor, rate] = factor_at(law.begin_s(k));
    const double speed = law.At(law.begin_s(k), k).speed;
    PathState& state = scaled.states[k];
    state.acceleration = factor * (factor * state.acceleration + rate * speed);
    state.square = factor * factor * speed * speed;
  }
  return LawOf(scaled);
}

}  // namespace qal

#endif  // QAL_PLAN_LAW_STATES_H_
