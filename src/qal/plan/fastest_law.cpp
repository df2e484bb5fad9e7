#include "fastest_law.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "axis_move.h"
#include "load.h"
#include "path_speed.h"

namespace qal {

namespace {

// A motion of seven phases, in pieces of `step_s` or less.
TimeLaw SevenPhaseLaw(const SevenPhases& phases, double begin, double end, double step_s) {
  AxisMotion motion;
  AddPieces(phases, begin, end - begin, motion);
  TimeLaw law;
  law.Append({begin, 0, 0, 0}, 0);
  for (int i = 0; i < motion.size(); ++i) {
    const bool final = i + 1 == motion.size();
    const double length_s =
        (final ? phases.duration_s() : motion.begin_s(i + 1)) - motion.begin_s(i);
    const auto parts = static_cast<int>(std::max(1.0, std::ceil(length_s / step_s)));
    for (int part = 1; part <= parts; ++part) {
      const AxisState at = motion.cubic(i).At(length_s * part / parts);
      const bool stops = final && part == parts;
      law.Append(
          {stops ? end : at.position, stops ? 0.0 : at.velocity, stops ? 0.0 : at.acceleration, 0},
          length_s / parts);
    }
  }
  return law;
}

// Some motion along a path: in seconds what the way is in its units.
TimeLaw SteadyLaw(const LimitedPath& path, double step_s) {
  const double length = path.end() - path.begin();
  return SevenPhaseLaw(SlowedPhases(FastestPhases(length, {1, 1, 1}), std::max(1.0, length)),
                       path.begin(), path.end(), step_s);
}

// The motion through states, from place to place at a jerk that is constant but for rounding and
// for what the draft's shape was off.
TimeLaw LawOf(const std::vector<double>& places, const std::vector<PathState>& states) {
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

void Redraft(const TimeLaw& law, Draft& draft) {
  for (size_t k = 0; k < law.size(); ++k) {
    draft.speed[k] = law.At(law.begin_s(k), k).speed;
    draft.half[k] = law.At(law.begin_s(k) + law.length_s(k) / 2, k).speed;
  }
}

// The longest phase of constant jerk that the limits of s and tool let a motion have [s].
double JerkPhaseOf(const LimitedPath& path) {
  double phase_s = INFINITY;
  for (const PathSection& section : path.sections) {
    const ToolLimits& tool = section.tool_limits;
    for (const auto& [acceleration, jerk] :
         {std::pair(section.acceleration, section.jerk), std::pair(tool.acceleration, tool.jerk),
          std::pair(tool.turn_acceleration, tool.turn_jerk)}) {
      if (acceleration < kNoLimit) phase_s = std::min(phase_s, acceleration / jerk);
    }
  }
  return phase_s;
}

// How far apart in time the states of a motion are: so that phases of jerk are seen, of s and of
// the joints; otherwise some cycles, to be about as fine as what is played of it.
double StepOf(const LimitedPath& path, double jerk_phase_s, double cycle_s) {
  double joints_s = INFINITY;
  for (const PathSection& section : path.sections) {
    for (size_t j = 0; j < 6; ++j) {
      joints_s = std::min(joints_s, section.joint_acceleration[j] / section.joint_jerk[j]);
    }
  }
  const double longest_s = std::max(6 * cycle_s, joints_s / 2);
  return std::clamp(jerk_phase_s / 4, 2 * cycle_s, longest_s);
}

// The same; no more is looked at once it is more than `enough`.
double SlowdownUpTo(const LimitedPath& path, const TimeLaw& law, double enough) {
  LoadMeter meter(path, law);
  Load most;
  for (size_t i = 0; i < law.size() && most.Slowdown() <= enough; ++i) {
    most = Larger(most, meter.Next());
  }
  return most.Slowdown();
}

// Finds motions in rounds: each has a better draft, and margins where the limits were exceeded
// between the places.
class Rounds {
 public:
  /// @param aim what to use of the limits, as a factor of the speed
  Rounds(const LimitedPath& path, const PathState& start, double step_s, double aim)
      : path_(path),
        start_(start),
        most_({aim, aim * aim, aim * aim * aim}),
        draft_(DraftOf(path, std::sqrt(start.square), step_s)),
        margin_(draft_.places.size() - 1, most_) {}

  /// One more motion; nothing where the round finds none.
  std::optional<TimeLaw> Next() {
    const std::vector<PathState> states = FastestStates(path_, start_, draft_, margin_);
    if (states.empty()) {
      // The tangents at a fast motion leave too little to a slow one.
      const size_t first = start_.square > 0 ? 1 : 0;
      for (size_t k = first; k < draft_.speed.size(); ++k) draft_.speed[k] *= 0.5;
      for (double& speed : draft_.half) speed *= 0.5;
      return std::nullopt;
    }
    TimeLaw law = LawOf(draft_.places, states);
    LoadMeter meter(path_, law);
    load_ = {};
    for (Margin& here : margin_) {
      const Load load = meter.Next();
      here.velocity = std::min(most_.velocity, here.velocity * most_.velocity / load.velocity);
      here.acceleration =
          std::min(most_.acceleration, here.acceleration * most_.acceleration / load.acceleration);
      here.jerk = std::min(most_.jerk, here.jerk * most_.jerk / load.jerk);
      load_ = Larger(load_, load);
    }
    Redraft(law, draft_);
    return law;
  }

  /// How much slower the last motion has to be.
  double slowdown() const { return load_.Slowdown(); }

 private:
  const LimitedPath& path_;
  PathState start_;
  Margin most_;
  Draft draft_;
  std::vector<Margin> margin_;
  Load load_;
};

constexpr int kMostRounds = 8;
// What a further round has to gain.
constexpr double kEnough = 8e-3;

}  // namespace

double SlowdownOf(const LimitedPath& path, const TimeLaw& law) {
  return SlowdownUpTo(path, law, INFINITY);
}

TimeLaw FastestLaw(const LimitedPath& path, double cycle_s) {
  TimeLaw best;
  double step_s = StepOf(path, JerkPhaseOf(path), cycle_s);
  const PathSection& only = path.sections.front();
  if (path.sections.size() == 1 && only.straight) {
    const SevenPhases phases =
        FastestPhases(path.end() - path.begin(), {only.speed, only.acceleration, only.jerk});
    step_s = StepOf(path, phases.jerk_s, cycle_s);
    step_s = std::max(step_s, phases.duration_s() / kMostSteps);
    // No motion is faster than by the limits of s alone. Rounding of quotients is no reason to slow
    // down, and to be as near to that as this is near enough.
    constexpr double kRounding = 1e-9;
    constexpr double kNearly = 1.005;
    best = SevenPhaseLaw(phases, path.begin(), path.end(), step_s);
    const double slowdown = SlowdownUpTo(path, best, kNearly);
    if (slowdown <= 1 + kRounding) return best;
    if (slowdown <= kNearly) return best.Slower(slowdown);
  }

  Rounds rounds(path, {0, 0}, step_s, 1);
  double best_s = INFINITY;
  for (int round = 0; round < kMostRounds; ++round) {
    const std::optional<TimeLaw> law = rounds.Next();
    if (!law) continue;
    const double duration_s = law->duration_s() * rounds.slowdown();
    const double gain = 1 - duration_s / best_s;
    if (gain > 0) {
      best_s = duration_s;
      best = law->Slower(rounds.slowdown());
    }
    if (rounds.slowdown() < 1 + kEnough && gain < kEnough) break;
  }
  if (std::isfinite(best_s)) return best;
  // Any motion keeps the limits if it is slow enough.
  if (best.size() == 0) best = SteadyLaw(path, step_s);
  return best.Slower(SlowdownOf(path, best));
}

std::optional<TimeLaw> FastestLawFrom(const LimitedPath& path, const PathState& start,
                                      double cycle_s) {
  // A motion that is moving where it begins can't be slowed down as a whole: it has to keep the
  // limits as it is.
  constexpr double kAim = 0.997;
  constexpr double kTolerance = 1e-4;
  constexpr int kMoreRounds = 2 * kMostRounds;
  Rounds rounds(path, start, StepOf(path, JerkPhaseOf(path), cycle_s), kAim);
  std::optional<TimeLaw> best;
  for (int round = 0; round < kMoreRounds; ++round) {
    std::optional<TimeLaw> law = rounds.Next();
    if (!law || rounds.slowdown() > 1 + kTolerance) continue;
    const double gain = best ? 1 - law->duration_s() / best->duration_s() : 1;
    if (gain > 0) best = std::move(law);
    if (gain < kEnough) break;
  }
  return best;
}

// With its speed times f, which falls smoothly with s from 1 to what it takes, the acceleration is
// f^2 a + f f' v^2.
TimeLaw SlowedTo(const TimeLaw& law, double duration_s) {
  std::vector<double> places;
  std::vector<PathState> states;
  for (size_t k = 0; k <= law.size(); ++k) {
    const PathMoment moment =
        k < law.size() ? law.At(law.begin_s(k), k) : law.At(law.duration_s(), k - 1);
    places.push_back(moment.s);
    states.push_back({moment.speed * moment.speed, moment.acceleration});
  }
  states.back() = {0, 0};
  const double span = places.back() - places.front();
  const auto slowed = [&](double most) {
    std::vector<PathState> slow = states;
    for (size_t k = 0; k < slow.size(); ++k) {
      const double x = (places[k] - places.front()) / span;
      const double factor = 1 - most * x * x * x * (10 - x * (15 - 6 * x));
      const double slope = -most * 30 * x * x * (1 - x) * (1 - x) / span;
      slow[k].acceleration =
          factor * factor * states[k].acceleration + factor * slope * states[k].square;
      slow[k].square = factor * factor * states[k].square;
    }
    return LawOf(places, slow);
  };
  double less = 0;
  double more = 0.5;
  for (int i = 0; i < 60; ++i) {
    const double middle = (less + more) / 2;
    (slowed(middle).duration_s() < duration_s ? less : more) = middle;
  }
  return slowed(more);
}

}  // namespace qal
