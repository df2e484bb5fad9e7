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

// Some motion along a path.
TimeLaw SteadyLaw(const LimitedPath& path) {
  const SevenPhases phases = FastestPhases(path.end() - path.begin(), {1, 1, 1});
  constexpr int kPieces = 2000;
  return SevenPhaseLaw(phases, path.begin(), path.end(), phases.duration_s() / kPieces);
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
  Rounds(const LimitedPath& path, const PathState& start, Draft draft)
      : path_(path), start_(start), draft_(std::move(draft)), margin_(draft_.places.size() - 1) {}

  /// One more motion; nothing where the round finds none.
  std::optional<TimeLaw> Next() {
    std::vector<PathState> states;
    // The tangents at a fast motion leave too little to a slow one: where it is too fast the draft
    // is slowed down.
    for (int tries = 0; states.empty(); ++tries) {
      constexpr int kMostTries = 40;
      if (tries == kMostTries) return std::nullopt;
      size_t dead_end = 0;
      states = FastestStates(path_, start_, draft_, margin_, dead_end);
      if (states.empty()) SlowDownAt(dead_end);
    }
    TimeLaw law = LawOf(draft_.places, states);
    LoadMeter meter(path_, law);
    load_ = {};
    for (Margin& here : margin_) {
      const Load load = meter.Next();
      // Between places the limit of speed is exceeded by what a motion can be slowed down by as a
      // whole, as a rule.
      constexpr double kTooFast = 1.002;
      if (load.velocity > kTooFast && std::isfinite(load.velocity)) {
        here.velocity /= load.velocity;
      }
      here.acceleration = std::min(1.0, here.acceleration / load.acceleration);
      here.jerk = std::min(1.0, here.jerk / load.jerk);
      load_ = Larger(load_, load);
    }
    Redraft(law, draft_);
    return law;
  }

  /// How much slower the last motion has to be.
  double slowdown() const { return load_.Slowdown(); }

 private:
  void SlowDownAt(size_t place) {
    constexpr size_t kAround = 6;
    constexpr double kFactor = 0.75;
    const size_t from = place > kAround ? place - kAround : 0;
    const size_t to = std::min(place + kAround, draft_.half.size() - 1);
    for (size_t k = from; k <= to; ++k) {
      const double away = static_cast<double>(k > place ? k - place : place - k) / (kAround + 1);
      const double factor = kFactor + (1 - kFactor) * away * away;
      if (k > 0 || start_.square == 0) draft_.speed[k] *= factor;
      draft_.half[k] *= factor;
    }
  }

  const LimitedPath& path_;
  PathState start_;
  Draft draft_;
  std::vector<Margin> margin_;
  Load load_;
};

// A dip in a motion's speed: by `depth` of itself at a time, and smoothly less around that.
class Dip {
 public:
  Dip(double depth, double time_s, double before_s, double after_s)
      : depth_(depth), time_s_(time_s), before_s_(before_s), after_s_(after_s) {}

  /// The factor of the speed and its derivative with respect to time.
  std::pair<double, double> At(double time_s) const {
    const double width_s = time_s < time_s_ ? before_s_ : after_s_;
    const double x = (time_s - time_s_) / width_s;
    const double left = 1 - x * x;
    if (!(left > 0)) return {1, 0};
    return {1 - depth_ * left * left * left, depth_ * 6 * x * left * left / width_s};
  }

 private:
  double depth_;
  double time_s_;
  double before_s_;
  double after_s_;
};

// At a piece's begin, and at the law's end.
PathMoment MomentOf(const TimeLaw& law, size_t k) {
  return k < law.size() ? law.At(law.begin_s(k), k) : law.At(law.duration_s(), k - 1);
}

// With its speed times f, whose derivative by time is f', a motion's acceleration is f^2 a + f f'
// v.
TimeLaw WithDips(const TimeLaw& law, const std::vector<Dip>& dips) {
  std::vector<double> places;
  std::vector<PathState> states;
  for (size_t k = 0; k <= law.size(); ++k) {
    const double time_s = k < law.size() ? law.begin_s(k) : law.duration_s();
    const PathMoment moment = MomentOf(law, k);
    double factor = 1;
    double rate = 0;  // of the factor's logarithm
    for (const Dip& dip : dips) {
      const auto [here, change] = dip.At(time_s);
      factor *= here;
      rate += change / here;
    }
    const double speed = factor * moment.speed;
    places.push_back(moment.s);
    states.push_back(
        {speed * speed, factor * factor * (moment.acceleration + rate * moment.speed)});
  }
  states.back() = {0, 0};
  return LawOf(places, states);
}

// How long a dip in a motion's speed takes at least for what it adds to accelerations and jerks to
// be less than what it takes away: a dip by d adds some 6 d speed / width^2 to the jerk, and takes
// away 3 d of it.
double WidthOf(const TimeLaw& law) {
  double speed = 0;
  double square = 0;  // the mean of the jerk's
  for (size_t k = 0; k < law.size(); ++k) {
    const PathMoment moment = law.At(law.begin_s(k) + law.length_s(k) / 2, k);
    speed = std::max(speed, moment.speed);
    square += law.length_s(k) / law.duration_s() * moment.jerk * moment.jerk;
  }
  return 2 * std::sqrt(speed / std::sqrt(square));
}

// Slows a motion down where it needs too much, and only there.
// @return what is left to slow it down by as a whole
double Mend(const LimitedPath& path, TimeLaw& law) {
  constexpr int kMostTurns = 12;
  constexpr double kMended = 2e-4;
  double width_s = WidthOf(law);
  double before = INFINITY;
  for (int turn = 0;; ++turn) {
    LoadMeter meter(path, law);
    std::vector<double> needed(law.size());
    for (double& here : needed) here = meter.Next().Slowdown();
    const double slowdown = *std::max_element(needed.begin(), needed.end());
    if (!(slowdown > 1 + kMended) || turn == kMostTurns || std::isinf(slowdown)) return slowdown;
    // The dips themselves are too steep.
    if (slowdown - 1 > 0.7 * (before - 1)) width_s *= 1.5;
    before = slowdown;
    std::vector<Dip> dips;
    for (;;) {
      const auto worst = std::max_element(needed.begin(), needed.end());
      if (*worst <= 1 + kMended / 2) break;
      const auto piece = static_cast<size_t>(worst - needed.begin());
      const double time_s = law.begin_s(piece) + law.length_s(piece) / 2;
      dips.emplace_back(1 - 1 / *worst, time_s, std::min(width_s, time_s), width_s);
      for (size_t k = 0; k < needed.size(); ++k) {
        const double there_s = law.begin_s(k) + law.length_s(k) / 2;
        if (std::fabs(there_s - time_s) < width_s) needed[k] = 1;
      }
    }
    law = WithDips(law, dips);
  }
}

constexpr int kMostRounds = 5;
// What a further round has to gain.
constexpr double kEnough = 8e-3;

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

// A motion, and how much slower it has to be.
struct Driven {
  TimeLaw law;
  double slowdown;
};

// @return nothing where no round finds a motion
std::optional<Driven> Drive(const LimitedPath& path, const PathState& start, Draft draft) {
  Rounds rounds(path, start, std::move(draft));
  std::optional<Driven> best;
  double best_s = INFINITY;
  for (int round = 0; round < kMostRounds; ++round) {
    std::optional<TimeLaw> law = rounds.Next();
    if (!law) continue;
    const double duration_s = law->duration_s() * rounds.slowdown();
    const double gain = 1 - duration_s / best_s;
    if (gain > 0) {
      best_s = duration_s;
      best = {*std::move(law), rounds.slowdown()};
    }
    if (rounds.slowdown() < 1 + kEnough && gain < kEnough) break;
  }
  return best;
}

// A motion that begins as another one, whose places it shares there, and goes over to its own. They
// are nearly the same; the square of the speed is mixed, from which the acceleration follows.
TimeLaw GoingOver(const TimeLaw& known, const TimeLaw& law) {
  const double begin_s = WidthOf(law);
  const double length_s = 2 * begin_s;
  std::vector<double> places;
  std::vector<PathState> states;
  for (size_t k = 0; k <= law.size(); ++k) {
    const PathMoment moment = MomentOf(law, k);
    PathState state = {moment.speed * moment.speed, moment.acceleration};
    if (k < known.size() && known.begin_s(k) < begin_s + length_s) {
      const PathMoment first = MomentOf(known, k);
      const double x = std::clamp((known.begin_s(k) - begin_s) / length_s, 0.0, 1.0);
      const double part = x * x * x * (10 - x * (15 - 6 * x));
      const double rate = 30 * x * x * (1 - x) * (1 - x) / length_s / first.speed;
      const double more = state.square - first.speed * first.speed;
      state.square = first.speed * first.speed + part * more;
      state.acceleration =
          first.acceleration + part * (state.acceleration - first.acceleration) + rate * more / 2;
    }
    places.push_back(moment.s);
    states.push_back(state);
  }
  states.back() = {0, 0};
  return LawOf(places, states);
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
  TimeLaw drafted = LawOf(draft.places, states);
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

  std::optional<Driven> driven = Drive(path, {0, 0}, DraftOf(path, 0, step_s));
  if (!driven) return SlowLaw(path, DraftOf(path, 0, step_s));
  if (driven->slowdown >= 1 + kEnough) {
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
  constexpr double kTolerance = 2e-4;
  if (Mend(path, law) > 1 + kTolerance) return std::nullopt;
  return law;
}

// With its speed times f, which falls smoothly with s from 1 to what it takes, the acceleration is
// f^2 a + f f' v^2.
TimeLaw SlowedTo(const TimeLaw& law, double duration_s) {
  std::vector<double> places;
  std::vector<PathState> states;
  for (size_t k = 0; k <= law.size(); ++k) {
    const PathMoment moment = MomentOf(law, k);
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
