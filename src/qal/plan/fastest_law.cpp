#include "fastest_law.h"

#include <algorithm>
#include <cmath>

#include "axis_move.h"
#include "load.h"
#include "path_speed.h"

namespace qal {

namespace {

// The fastest motion by the limits of s alone, in pieces of `step_s` or less.
TimeLaw SevenPhaseLaw(const SevenPhases& phases, double step_s) {
  AxisMotion motion;
  AddPieces(phases, 0, 1, motion);
  TimeLaw law;
  law.Append({0, 0, 0, 0}, 0);
  for (int i = 0; i < motion.size(); ++i) {
    const bool final = i + 1 == motion.size();
    const double length_s =
        (final ? phases.duration_s() : motion.begin_s(i + 1)) - motion.begin_s(i);
    const auto parts = static_cast<int>(std::max(1.0, std::ceil(length_s / step_s)));
    for (int part = 1; part <= parts; ++part) {
      const AxisState end = motion.cubic(i).At(length_s * part / parts);
      const bool stops = final && part == parts;
      law.Append({stops ? 1.0 : end.position, stops ? 0.0 : end.velocity,
                  stops ? 0.0 : end.acceleration, 0},
                 length_s / parts);
    }
  }
  return law;
}

// The motion through states, from place to place at a jerk that is constant but for rounding and
// for what the draft's shape was off.
TimeLaw LawOf(const std::vector<double>& places, const std::vector<PathState>& states) {
  TimeLaw law;
  PathMoment from = {0, 0, 0, 0};
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

void Redraft(const TimeLaw& law, Draft& draft) {
  for (size_t k = 0; k < law.size(); ++k) {
    draft.speed[k] = law.At(law.begin_s(k), k).speed;
    draft.half[k] = law.At(law.begin_s(k) + law.length_s(k) / 2, k).speed;
  }
}

// How far apart in time the states of a motion are: so that phases of jerk are seen, of s and of
// the joints; otherwise some cycles, to be about as fine as what is played of it.
double StepOf(const SevenPhases& phases, const PathLimits& limits, double cycle_s) {
  double joints_s = INFINITY;
  for (size_t j = 0; j < 6; ++j) {
    joints_s = std::min(joints_s, limits.joint_acceleration[j] / limits.joint_jerk[j]);
  }
  const double longest_s = std::max(6 * cycle_s, joints_s / 2);
  const double step_s = std::clamp(phases.jerk_s / 4, 2 * cycle_s, longest_s);
  return std::max(step_s, phases.duration_s() / kMostSteps);
}

// How much slower a law has to be; no more is looked at once it is more than `enough`.
double SlowdownOf(const JointPath& path, const PathLimits& limits, const TimeLaw& law,
                  double enough) {
  LoadMeter meter(path, limits, law);
  Load most;
  for (size_t i = 0; i < law.size() && most.Slowdown() <= enough; ++i) {
    most = Larger(most, meter.Next());
  }
  return most.Slowdown();
}

}  // namespace

TimeLaw FastestLaw(const JointPath& path, const PathLimits& limits, double cycle_s) {
  const SevenPhases phases = FastestPhases(1, {limits.speed, limits.acceleration, limits.jerk});
  const double step_s = StepOf(phases, limits, cycle_s);
  // No motion is faster than by the limits of s alone. Rounding of quotients is no reason to slow
  // down, and to be as near to that as this is near enough.
  constexpr double kRounding = 1e-9;
  constexpr double kNearly = 1.005;
  TimeLaw best = SevenPhaseLaw(phases, step_s);
  const double slowdown = SlowdownOf(path, limits, best, kNearly);
  if (slowdown <= 1 + kRounding) return best;
  if (slowdown <= kNearly) return best.Slower(slowdown);

  Draft draft = DraftOf(path, limits, step_s);
  std::vector<Margin> margin(draft.places.size() - 1);
  // Each round has a better draft, and margins where the limits were exceeded between the places.
  constexpr int kRounds = 8;
  constexpr double kEnough = 8e-3;
  double best_s = INFINITY;
  for (int round = 0; round < kRounds; ++round) {
    const std::vector<PathState> states = FastestStates(path, limits, draft, margin);
    if (states.empty()) {
      // The tangents at a fast motion leave too little to a slow one.
      for (double& speed : draft.speed) speed *= 0.5;
      for (double& speed : draft.half) speed *= 0.5;
      continue;
    }
    const TimeLaw law = LawOf(draft.places, states);
    LoadMeter meter(path, limits, law);
    Load most;
    for (Margin& here : margin) {
      const Load load = meter.Next();
      here.acceleration = std::min(1.0, here.acceleration / load.acceleration);
      here.jerk = std::min(1.0, here.jerk / load.jerk);
      most = Larger(most, load);
    }
    Redraft(law, draft);
    const double duration_s = law.duration_s() * most.Slowdown();
    const double gain = 1 - duration_s / best_s;
    if (gain > 0) {
      best_s = duration_s;
      best = law.Slower(most.Slowdown());
    }
    if (most.Slowdown() < 1 + kEnough && gain < kEnough) break;
  }
  if (std::isfinite(best_s)) return best;
  // Any motion keeps the limits if it is slow enough.
  return best.Slower(SlowdownOf(path, limits, best, INFINITY));
}

}  // namespace qal
