#include "law_states.h"

#include <algorithm>
#include <cmath>

namespace qal {

LawStates StatesOf(const TimeLaw& law) {
  LawStates all;
  for (size_t k = 0; k < law.size(); ++k) {
    const PathMoment moment = law.At(law.begin_s(k), k);
    all.places.push_back(moment.s);
    all.states.push_back({moment.speed * moment.speed, moment.acceleration});
  }
  all.places.push_back(law.At(law.duration_s(), law.size() - 1).s);
  all.states.push_back({0, 0});
  return all;
}

TimeLaw LawOf(const LawStates& states_at) {
  const auto& [places, states] = states_at;
  TimeLaw law;
  PathMoment from = {places[0], std::sqrt(states[0].square), states[0].acceleration, 0};
  law.Append(from, 0);
  for (size_t k = 1; k < places.size(); ++k) {
    const PathMoment to = {places[k], std::sqrt(states[k].square), states[k].acceleration, 0};
    // At a constant jerk h = (v0 + v1) / 2 t + (a0 - a1) / 12 t^2.
    const double h = to.s - from.s;
    const double mean = (from.speed + to.speed) / 2;
    const double a = (from.acceleration - to.acceleration) / 12;
    law.Append(to, 2 * h / (mean + std::sqrt(std::max(mean * mean + 4 * a * h, 0.0))));
    from = to;
  }
  return law;
}

}  // namespace qal
