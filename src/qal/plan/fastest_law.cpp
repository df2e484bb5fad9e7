#include "fastest_law.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "axis_move.h"
#include "law_states.h"
#include "load.h"
#include "mend.h"
#include "rounds.h"

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

// Some motion along a path.
TimeLaw SteadyLaw(const LimitedPath& path) {
  const SevenPhases phases = FastestPhases(path.end() - path.begin(), {1, 1, 1});
  constexpr int kPieces = 2000;
  return SevenPhaseLaw(phases, path.begin(), path.end(), phases.duration_s() / kPieces);
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

// How much slower a law has to be; no more is looked at once that is more than `enough`.
double SlowdownUpTo(const LimitedPath& path, const TimeLaw& law, double enough) {
  LoadMeter meter(path, law);
  Load most;
  for (size_t i = 0; i < law.size() && most.Slowdown() <= enough; ++i) {
    most = Larger(most, meter.Next());
  }
  return most.Slowdown();
}

// A motion that begins as another one, whose places it shares there, and goes over to its own. They
// are nearly the same; the square of the speed is mixed, from which the acceleration follows.
TimeLaw GoingOver(const TimeLaw& known, const TimeLaw& law) {
  const double begin_s = DipWidthOf(law);
  const double length_s = 2 * begin_s;
  const LawStates first = StatesOf(known);
  LawStates mixed = StatesOf(law);
  for (size_t k = 0; k < law.size() && k < known.size(); ++k) {
    const double part = (known.begin_s(k) - begin_s) / length_s;
    if (part >= 1) break;
    const SmoothStep step(std::max(part, 0.0));
    const auto& [square, acceleration] = first.states[k];
    PathState& state = mixed.states[k];
    const double more = state.square - square;
    state = {square + step.value * more, acceleration +
                                             step.value * (state.acceleration - acceleration) +
                                             step.slope / length_s / std::sqrt(square) * more / 2};
  }
  return LawOf(mixed);
}

// A draft that begins as a motion that is known, and is itself from the middle of that one on:
// there the motion begins to come to rest.
Draft BeginningAs(const TimeLaw& known, const Draft& draft) {
  Draft joined;
  const double begin = draft.places.front();
  const double join = (begin + known.At(known.duration_s()).s) / 2;
  for (size_t k = 0; k < known.size(); ++k) {
    const PathMoment moment = known.At(known.begin_s(k), k);
    if (moment.s >= join) break;
    joined.places.push_back(k == 0 ? begin : moment.s);
    joined.speed.push_back(moment.speed);
    joined.half.push_back(known.At(known.begin_s(k) + known.length_s(k) / 2, k).speed);
  }
  for (size_t k = 0; k < draft.places.size(); ++k) {
    if (draft.places[k] < join) continue;
    joined.places.push_back(draft.places[k]);
    joined.speed.push_back(draft.speed[k]);
    if (k < draft.half.size()) joined.half.push_back(draft.half[k]);
  }
  return joined;
}

// Where no round finds a motion: any one keeps the limits if it is slow enough. The draft, mended
// where it needs too much, or a steady one.
TimeLaw SlowLaw(const LimitedPath& path, const Draft& draft) {
  std::vector<PathState> states(draft.places.size(), PathState{0, 0});
  for (size_t k = 1; k + 1 < states.size(); ++k) {
    const double before = draft.speed[k - 1];
    const double after = draft.speed[k + 1];
    states[k] = {
        draft.speed[k] * draft.speed[k],
        (after * after - before * before) / (2 * (draft.places[k + 1] - draft.places[k - 1]))};
  }
  // What is needed between looks is more than at them, of motions as uneven as these.
  constexpr double kBetween = 1.005;
  TimeLaw drafted = LawOf({draft.places, std::move(states)});
  drafted = drafted.Slower(kBetween * Mend(path, drafted));
  TimeLaw steady = SteadyLaw(path);
  steady = steady.Slower(kBetween * SlowdownOf(path, steady));
  return drafted.duration_s() < steady.duration_s() ? drafted : steady;
}

}  // namespace

double SlowdownOf(const LimitedPath& path, const TimeLaw& law) {
  return SlowdownUpTo(path, law, INFINITY);
}

TimeLaw FastestLaw(const LimitedPath& path, double cycle_s) {
  double step_s = StepOf(path, JerkPhaseOf(path), cycle_s);
  const PathSection& only = path.sections.front();
  if (path.sections.size() == 1 && only.straight) {
    const SevenPhases phases =
        FastestPhases(path.end() - path.begin(), {only.speed, only.acceleration, only.jerk});
    step_s = StepOf(path, phases.jerk_s, cycle_s);
    step_s = std::max(step_s, phases.duration_s() / kMostDraftSteps);
    // No motion is faster than by the limits of s alone. Rounding of quotients is no reason to slow
    // down, and to be as near to that as this is near enough.
    constexpr double kRounding = 1e-9;
    constexpr double kNearly = 1.005;
    TimeLaw best = SevenPhaseLaw(phases, path.begin(), path.end(), step_s);
    const double slowdown = SlowdownUpTo(path, best, kNearly);
    if (slowdown <= 1 + kRounding) return best;
    if (slowdown <= kNearly) return best.Slower(slowdown);
  }

  std::optional<Driven> driven = Drive(path, {0, 0}, DraftOf(path, 0, step_s));
  if (!driven) return SlowLaw(path, DraftOf(path, 0, step_s));
  if (driven->slowdown >= 1 + kRoundsEnough) {
    TimeLaw mended = driven->law;
    const double slowdown = Mend(path, mended);
    if (mended.duration_s() * slowdown < driven->law.duration_s() * driven->slowdown) {
      return mended.Slower(slowdown);
    }
  }
  return driven->law.Slower(driven->slowdown);
}

std::optional<TimeLaw> FastestLawFrom(const LimitedPath& path, const TimeLaw& known,
                                      double cycle_s) {
  const PathMoment start = known.At(0, 0);
  const Draft draft = DraftOf(path, start.speed, StepOf(path, JerkPhaseOf(path), cycle_s));
  const auto driven =
      Drive(path, {start.speed * start.speed, start.acceleration}, BeginningAs(known, draft));
  if (!driven) return std::nullopt;
  TimeLaw law = GoingOver(known, driven->law);
  // A motion that is moving where it begins can't be slowed down as a whole.
  if (Mend(path, law) > 1 + kMended) return std::nullopt;
  return law;
}

TimeLaw SlowedTo(const TimeLaw& law, double duration_s) {
  const auto slowed = [&law](double most) {
    return Scaled(law, [&law, most](double time_s) {
      const SmoothStep step(time_s / law.duration_s());
      return SpeedFactor{1 - most * step.value, -most * step.slope / law.duration_s()};
    });
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
