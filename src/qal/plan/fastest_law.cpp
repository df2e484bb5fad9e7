#include "fastest_law.h"

#include <algorithm>
#include <cmath>

#include "axis_move.h"

namespace qal {

namespace {

// NaN is larger than any.
double Larger(double a, double b) { return b <= a ? a : b; }

Load Larger(const Load& a, const Load& b) {
  return {Larger(a.velocity, b.velocity), Larger(a.acceleration, b.acceleration),
          Larger(a.jerk, b.jerk)};
}

// What a moment of a motion needs.
Load LoadAt(const PathPoint& joints, const PathMoment& moment, const PathLimits& limits) {
  const auto& [s, v, a, jerk] = moment;
  Load load = {std::fabs(v) / limits.speed, std::fabs(a) / limits.acceleration,
               std::fabs(jerk) / limits.jerk};
  for (size_t j = 0; j < 6; ++j) {
    const double first = joints.first[j];
    const double second = joints.second[j];
    const double velocity = first * v;
    const double acceleration = second * v * v + first * a;
    const double third = joints.third[j] * v * v * v + 3 * second * v * a + first * jerk;
    load.velocity = std::max(load.velocity, std::fabs(velocity) / limits.joint_velocity[j]);
    load.acceleration =
        std::max(load.acceleration, std::fabs(acceleration) / limits.joint_acceleration[j]);
    load.jerk = std::max(load.jerk, std::fabs(third) / limits.joint_jerk[j]);
  }
  return load;
}

// Adds what a law needs from one moment to another, the second included. In between it is looked at
// so closely that no piece of the path is passed over: there the joints bend most.
void AddLoad(const JointPath& path, const PathLimits& limits, const TimeLaw& law, size_t piece,
             double from_s, double to_s, size_t& path_piece, Load& most) {
  const size_t before = path_piece;
  const PathMoment moment = law.At(to_s, piece);
  const double s = std::clamp(moment.s, 0.0, 1.0);
  path_piece = path.PieceAt(s, path_piece);
  most = Larger(most, LoadAt(path.At(s, path_piece), moment, limits));
  // A law that is slower than its numbers can tell is none.
  constexpr double kShortestS = 1e-9;
  if (path_piece <= before + 1 || to_s - from_s < kShortestS) return;
  const double middle_s = (from_s + to_s) / 2;
  size_t between = before;
  AddLoad(path, limits, law, piece, from_s, middle_s, between, most);
  AddLoad(path, limits, law, piece, middle_s, to_s, between, most);
}

// The most that a piece of a law needs. Within it nothing jumps, and what bends does so over some
// of its lengths.
Load LoadOf(const JointPath& path, const PathLimits& limits, const TimeLaw& law, size_t piece,
            size_t& path_piece) {
  constexpr int kLooks = 4;
  const double begin_s = law.begin_s(piece);
  const double look_s = law.length_s(piece) / kLooks;
  Load most;
  AddLoad(path, limits, law, piece, begin_s, begin_s, path_piece, most);
  for (int i = 0; i < kLooks; ++i) {
    AddLoad(path, limits, law, piece, begin_s + i * look_s, begin_s + (i + 1) * look_s, path_piece,
            most);
  }
  return most;
}

// The fastest motion by the limits of s alone, in pieces of `step_s` or less.
TimeLaw SevenPhaseLaw(const PathLimits& limits, double step_s) {
  AxisMotion motion;
  const SevenPhases phases = FastestPhases(1, {limits.speed, limits.acceleration, limits.jerk});
  AddPieces(phases, 0, 1, motion);
  TimeLaw law;
  law.Append({0, 0, 0, 0}, 0);
  for (int i = 0; i < motion.size(); ++i) {
    const bool final = i + 1 == motion.size();
    const double length_s =
        (final ? phases.duration_s() : motion.begin_s(i + 1)) - motion.begin_s(i);
    const double parts = std::max(1.0, std::ceil(length_s / step_s));
    for (double part = 1; part <= parts; ++part) {
      const AxisState end = motion.cubic(i).At(length_s * part / parts);
      const bool stops = final && part == parts;
      law.Append({stops ? 1.0 : end.position, stops ? 0.0 : end.velocity,
                  stops ? 0.0 : end.acceleration, 0},
                 length_s / parts);
    }
  }
  return law;
}

// A motion that is about as fast as the limits let it, to place the states of the true one by, and
// for the tangents: at each place as fast as its speed, and its bends without an acceleration,
// allow; and from place to place with what acceleration the joints' limits leave.
Draft DraftOf(const JointPath& path, const PathLimits& limits) {
  Draft draft;
  std::vector<double> acceleration;
  const auto add = [&](double s, size_t piece) {
    const PathPoint q = path.At(s, piece);
    double jerk = limits.jerk;
    double speed = limits.speed;
    double most = limits.acceleration;
    for (size_t j = 0; j < 6; ++j) {
      const double first = std::fabs(q.first[j]);
      speed = std::min({speed, limits.joint_velocity[j] / first,
                        std::sqrt(limits.joint_acceleration[j] / std::fabs(q.second[j])),
                        std::cbrt(limits.joint_jerk[j] / std::fabs(q.third[j]))});
      most = std::min(most, limits.joint_acceleration[j] / first);
      jerk = std::min(jerk, limits.joint_jerk[j] / first);
    }
    // From rest at the constant jerk: s = j t^3 / 6, v = j t^2 / 2.
    const double from_end = std::min(s, 1 - s);
    const double time_s = std::cbrt(6 * from_end / jerk);
    draft.places.push_back(s);
    draft.speed.push_back(std::min(speed, jerk * time_s * time_s / 2));
    acceleration.push_back(most);
  };
  constexpr int kParts = 8;
  for (size_t piece = 0; piece < path.size(); ++piece) {
    const bool first = piece == 0;
    const bool final = piece + 1 == path.size();
    for (int i = 0; i < kParts; ++i) {
      // Towards the ends the places come closer, as the cube.
      double u = static_cast<double>(i) / kParts;
      if (first && !final) u = u * u * u;
      if (final && !first) u = 1 - (1 - u) * (1 - u) * (1 - u);
      add(path.begin(piece) + u * path.length(piece), piece);
    }
  }
  add(1, path.size() - 1);
  const auto limit = [&](size_t from, size_t to) {
    const double h = std::fabs(draft.places[to] - draft.places[from]);
    const double most = std::min(acceleration[from], acceleration[to]);
    const double square = draft.speed[from] * draft.speed[from] + 2 * most * h;
    draft.speed[to] = std::min(draft.speed[to], std::sqrt(square));
  };
  const size_t last = draft.places.size() - 1;
  for (size_t k = 2; k <= last; ++k) limit(k - 1, k);
  for (size_t k = last - 1; k > 1; --k) limit(k, k - 1);
  return draft;
}

// A draft over time: between its places the speed is linear in time, but quadratic from and to
// rest.
class TimedDraft {
 public:
  explicit TimedDraft(const Draft& draft) : draft_(draft), times_(draft.places.size(), 0.0) {
    const size_t last = times_.size() - 1;
    for (size_t k = 0; k < last; ++k) {
      const double h = draft.places[k + 1] - draft.places[k];
      const double speed = draft.speed[k] + draft.speed[k + 1];
      times_[k + 1] = times_[k] + (k == 0 || k + 1 == last ? 3 : 2) * h / speed;
    }
  }

  double duration_s() const { return times_.back(); }

  /// Place and speed at a time; times are asked for in their order.
  std::pair<double, double> At(double time_s) {
    while (k_ + 2 < times_.size() && times_[k_ + 1] <= time_s) ++k_;
    const double part = (time_s - times_[k_]) / (times_[k_ + 1] - times_[k_]);
    const double left = 1 - part;
    const double from = draft_.places[k_];
    const double h = draft_.places[k_ + 1] - from;
    const double v0 = draft_.speed[k_];
    const double v1 = draft_.speed[k_ + 1];
    if (k_ == 0) return {h * part * part * part, v1 * part * part};
    if (k_ + 2 == times_.size()) return {from + h * (1 - left * left * left), v0 * left * left};
    const double speed = v0 + part * (v1 - v0);
    return {from + h * part * (v0 + speed) / (v0 + v1), speed};
  }

 private:
  const Draft& draft_;
  std::vector<double> times_;
  size_t k_ = 0;
};

// The draft by other places, `step_s` apart, and closer where the path's pieces are shorter: there
// the joints bend most.
Draft Spaced(const Draft& draft, const JointPath& path, double step_s) {
  TimedDraft timed(draft);
  // Fewer would not show the phases of a short motion.
  constexpr double kLeast = 24;
  const double count = std::max(kLeast, std::ceil(timed.duration_s() / step_s));
  const double interval_s = timed.duration_s() / count;
  std::vector<double> times;
  size_t piece = 0;
  double before = 0;
  for (double i = 1; i <= count; ++i) {
    const double s = i < count ? timed.At(i * interval_s).first : 1;
    double shortest = path.length(piece);
    for (; piece + 1 < path.size() && path.begin(piece + 1) < s; ++piece) {
      shortest = std::min(shortest, path.length(piece + 1));
    }
    const double parts = std::ceil(3 * (s - before) / shortest);
    for (double part = 1; part <= parts; ++part) {
      times.push_back((i - 1 + part / parts) * interval_s);
    }
    before = s;
  }
  times.pop_back();
  TimedDraft again(draft);
  Draft spaced = {{0}, {0}, {}};
  for (const double time_s : times) {
    const auto [place, speed] = again.At(time_s);
    spaced.places.push_back(place);
    spaced.speed.push_back(speed);
  }
  spaced.places.push_back(1);
  spaced.speed.push_back(0);
  for (size_t i = 1; i < spaced.speed.size(); ++i) {
    const double v0 = spaced.speed[i - 1];
    const double v1 = spaced.speed[i];
    spaced.half.push_back((v0 + v1) / (v0 == 0 || v1 == 0 ? 4 : 2));
  }
  return spaced;
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

}  // namespace

Load LoadOf(const JointPath& path, const PathLimits& limits, const TimeLaw& law) {
  Load most;
  size_t path_piece = 0;
  for (size_t i = 0; i < law.size(); ++i) {
    most = Larger(most, LoadOf(path, limits, law, i, path_piece));
  }
  return most;
}

double Load::Slowdown() const {
  return Larger(Larger(1.0, velocity), Larger(std::sqrt(acceleration), std::cbrt(jerk)));
}

TimeLaw FastestLaw(const JointPath& path, const PathLimits& limits, double step_s) {
  // Any motion keeps the limits if it is slow enough; this one may be the fastest as it is.
  TimeLaw best = SevenPhaseLaw(limits, step_s);
  const double slowdown = LoadOf(path, limits, best).Slowdown();
  // Rounding of the limits' own quotients.
  constexpr double kRounding = 1e-9;
  if (slowdown <= 1 + kRounding) return best;
  best = best.Slower(slowdown);

  Draft draft = Spaced(DraftOf(path, limits), path, step_s);
  std::vector<Margin> margin(draft.places.size() - 1);
  // Each round has a better draft, and margins where the limits were exceeded between the places.
  constexpr int kRounds = 8;
  constexpr double kEnough = 5e-4;
  for (int round = 0; round < kRounds; ++round) {
    const std::vector<PathState> states = FastestStates(path, limits, draft, margin);
    if (states.empty()) {
      // The tangents at a fast motion leave too little to a slow one.
      for (double& speed : draft.speed) speed *= 0.5;
      for (double& speed : draft.half) speed *= 0.5;
      continue;
    }
    const TimeLaw law = LawOf(draft.places, states);
    Load most;
    size_t path_piece = 0;
    for (size_t k = 0; k < law.size(); ++k) {
      const Load load = LoadOf(path, limits, law, k, path_piece);
      margin[k].acceleration = std::min(1.0, margin[k].acceleration / load.acceleration);
      margin[k].jerk = std::min(1.0, margin[k].jerk / load.jerk);
      most = Larger(most, load);
    }
    Redraft(law, draft);
    const double duration_s = law.duration_s() * most.Slowdown();
    const double gain = 1 - duration_s / best.duration_s();
    if (gain > 0) best = law.Slower(most.Slowdown());
    if (most.Slowdown() < 1 + kEnough && gain < kEnough) break;
  }
  return best;
}

}  // namespace qal
