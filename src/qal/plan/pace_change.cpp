#include "pace_change.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qal {

namespace {

// How much of the limits a leg of constant jerk uses: what is needed between looks is a little
// more than at them.
constexpr Margin kAlongPath = {1, 0.993, 0.99};
// Of one that begins where such a one ended.
constexpr Margin kToRest = {1, 0.995, 0.992};
// Of accelerations, where a plan is at their limits already.
constexpr double kMostAcceleration = 0.9992;
// Of a leg by the clock: as the plan itself, which is at its limits, and between looks beyond them.
constexpr Margin kByClock = {1, 1.0005, 1.0005};

// The plan keeps the limits of velocity at no higher pace than its own, but for rounding.
constexpr double kMostPace = 1 + 1e-9;

// How long to brake before the jerk that takes the motion to rest would be the highest that there
// is: the d for which a^2 = 2 v j, with the jerk k before it.
double BrakeBeforeRest(const PathMoment& now, const Range& jerk) {
  const double k = jerk.low;
  const double j = jerk.high;
  const double square = k * (k - j);
  const double half = now.acceleration * (k - j);
  const double rest = now.acceleration * now.acceleration - 2 * j * now.speed;
  return (-half + std::sqrt(std::max(0.0, half * half - square * rest))) / square;
}

// The time to rest by the jerks that limits allow here.
double LeastStop(const PathMoment& now, const Range& jerk) {
  const double brake_s = std::max(0.0, BrakeBeforeRest(now, jerk));
  const double speed = now.speed + brake_s * (now.acceleration + brake_s * jerk.low / 2);
  const double acceleration = now.acceleration + brake_s * jerk.low;
  return brake_s + std::max(0.0, -2 * speed / acceleration);
}

}  // namespace

// One leg at the lowest or the highest jerk that the limits leave at both of its ends, and halfway.
bool PaceChange::Step(Node& node, double length_s, Pick pick, Course& course) {
  const double s = node.at.path.s;
  const double v = node.at.path.speed;
  const double a = node.at.path.acceleration;
  const double t = length_s;
  const auto place_by = [&](double jerk) { return s + t * (v + t * (a / 2 + t * jerk / 6)); };
  const Range here = node.limits.Jerks(v, a, 0);
  if (here.empty()) return false;
  double jerk = pick == Pick::kLow ? here.low : here.high;
  // What the other end allows hardly depends on the choice, but where the motion is slow, or a
  // section ends.
  PlaceLimits limits;
  PlaceLimits quarter;
  PlaceLimits halfway;
  double there = s;
  const auto is_near = [&](double end) {
    constexpr double kNear = 0.02;
    return std::fabs(end - there) < kNear * (there - s) && looks_.IsInSection(end);
  };
  bool settled = false;
  constexpr int kMostRounds = 5;
  for (int round = 0; round < kMostRounds && !settled; ++round) {
    if (const double end = std::min(place_by(jerk), path_.end()); !is_near(end)) {
      if (!(end >= s) || !looks_.left()) return false;
      there = end;
      limits = looks_.LimitsFrom(s, there, along_path_);
      halfway = PlaceLimits::Halfway(node.limits, limits, there - s);
      quarter = PlaceLimits::Halfway(node.limits, halfway, (there - s) / 2);
    }
    Range range = here;
    const auto meet = [&](const PlaceLimits& place, double after_s) {
      const double speed = std::max(0.0, v + after_s * (a + after_s * jerk / 2));
      const Range accelerations = place.Accelerations(speed);
      range.Meet((accelerations.low - a) / after_s, (accelerations.high - a) / after_s);
      range.Meet(place.Jerks(speed, a, after_s));
    };
    meet(quarter, t / 4);
    meet(halfway, t / 2);
    meet(limits, t);
    if (range.empty()) return false;
    const double change = (pick == Pick::kLow ? range.low : range.high) - jerk;
    jerk += change;
    constexpr double kHardly = 1e-3;
    settled =
        std::fabs(change) * t * t <= kHardly * v && is_near(std::min(place_by(jerk), path_.end()));
  }
  if (!settled) return false;
  Leg leg = {node.at, t};
  leg.from.path.jerk = jerk;
  node = {player_.At(leg, t), limits};
  if (!(node.at.path.speed >= 0) || !(node.at.path.s < path_.end())) return false;
  return node.at.clock_s < duration_s_ && node.at.pace <= kMostPace && course.Append(leg);
}

bool PaceChange::Advance(Node& node, double length_s, Pick pick, Course& course) {
  for (double left_s = length_s; left_s > 0;) {
    const double look_s = looks_.After(node.at.path);
    const double step_s = look_s < left_s ? look_s : left_s;
    if (!Step(node, step_s, pick, course)) return false;
    left_s -= step_s;
  }
  return true;
}

// To a constant pace as soon as possible.
bool PaceChange::Release(Node& node, Course& course) {
  const bool slows = node.at.pace_rate < 0;
  const Pick pick = slows ? Pick::kHigh : Pick::kLow;
  while (slows ? node.at.pace_rate < 0 : node.at.pace_rate > 0) {
    // As long as it takes at the jerk that there is, and a little longer; in parts where that's
    // long.
    const PathMoment& at = node.at.path;
    const Range jerks = node.limits.Jerks(at.speed, at.acceleration, 0);
    const double excess = std::fabs(node.at.pace_rate * at.speed / node.at.pace);
    const double rest_s = excess / std::fabs(slows ? jerks.high : jerks.low);
    constexpr double kALittle = 1.25;
    constexpr double kMostLegs = 12;
    constexpr double kLeast = 0.01;
    constexpr double kLongest = 2;
    const double step_s = std::max(std::min(kALittle * rest_s, cycle_s_), rest_s / kMostLegs);
    if (!Advance(node, std::clamp(step_s, kLeast * cycle_s_, kLongest * cycle_s_), pick, course)) {
      return false;
    }
  }
  return Settle(course);
}

// Ends the last leg where the pace stops to change: false position, which halves what it knows of
// an end that stays.
bool PaceChange::Settle(Course& course) {
  Leg& leg = course.leg[course.legs - 1];
  double low = 0;
  double high = leg.length_s;
  double rate_low = leg.from.pace_rate;
  double rate_high = player_.At(leg, high).pace_rate;
  const double rounding = 1e-10 * std::max(std::fabs(rate_low), std::fabs(rate_high));
  PlayMoment at = leg.from;
  double t = low;
  constexpr int kMostSteps = 30;
  for (int i = 0; i < kMostSteps && std::fabs(at.pace_rate) > rounding; ++i) {
    t = low + (high - low) * rate_low / (rate_low - rate_high);
    at = player_.At(leg, t);
    if ((at.pace_rate < 0) == (leg.from.pace_rate < 0)) {
      low = t;
      rate_low = at.pace_rate;
      rate_high /= 2;
    } else {
      high = t;
      rate_high = at.pace_rate;
      rate_low /= 2;
    }
  }
  leg.length_s = t;
  course.clock_s = at.clock_s;
  course.pace = at.pace;
  return true;
}

double PaceChange::LookAfter(const Leg& leg, const PlayMoment& at) {
  constexpr double kLeastLooks = 6;
  const double look_s = std::min({cycle_s_, leg.length_s / kLeastLooks, looks_.After(at.path)});
  if (!leg.by_clock) return look_s;
  // The plan's jerk jumps from piece to piece: before and after that.
  const double beside_s = 0.01 * cycle_s_;
  const double left_s = player_.PieceLeft(at.clock_s);
  double jump_s = left_s / at.pace;
  constexpr int kRounds = 3;
  for (int i = 0; i < kRounds; ++i) jump_s = left_s / (at.pace + at.pace_rate * jump_s / 2);
  if (!(jump_s > 0)) return look_s;
  return std::min(look_s, jump_s > 2 * beside_s ? jump_s - beside_s : jump_s + beside_s);
}

// Looks at all of a leg.
bool PaceChange::Allows(const Leg& leg, const Margin& use) {
  constexpr double kLongestCycles = 100;
  if (!(leg.length_s <= kLongestCycles * cycle_s_)) return false;
  PlaceLimits before;
  double before_s = 0;
  PathMoment before_at = leg.from.path;
  for (double t = 0;;) {
    const PlayMoment at = player_.At(leg, t);
    if (!(at.path.s < path_.end()) || at.pace > kMostPace || !looks_.left()) return false;
    const PlaceLimits limits = looks_.LimitsFrom(before_at.s, at.path.s, use);
    if (!limits.Allow(at.path)) return false;
    if (t > 0) {
      const PathMoment half = player_.At(leg, (before_s + t) / 2).path;
      const double way = at.path.s - before_at.s;
      if (!PlaceLimits::Halfway(before, limits, way).Allow(half)) return false;
    }
    if (t >= leg.length_s) return true;
    before = limits;
    before_at = at.path;
    before_s = t;
    t = std::min(t + LookAfter(leg, at), leg.length_s);
  }
}

// To rest exactly: the jerk that takes speed and acceleration to 0 at once, j = a^2 / (2 v).
bool PaceChange::LandAtRest(const Node& now, Leg& leg) {
  const auto& [s, v, a, before] = now.at.path;
  if (!(a < 0 && v > 0)) return false;
  leg = {now.at, -2 * v / a};
  leg.from.path.jerk = a * a / (2 * v);
  Margin use = kToRest;
  use.acceleration = std::max(use.acceleration, along_path_.acceleration);
  return Allows(leg, use);
}

// To a pace exactly, its second derivative being constant: pace'' = -pace'^2 / (2 gap).
bool PaceChange::Land(const Node& now, double pace, Leg& leg) {
  if (pace == 0) return LandAtRest(now, leg);
  const double gap = pace - now.at.pace;
  const double rate = now.at.pace_rate;
  if (!(gap * rate > 0)) return false;
  leg = {now.at, 2 * gap / rate, true, -rate * rate / (2 * gap)};
  return Allows(leg, kByClock);
}

// Ends a course with a leg to a pace.
bool PaceChange::EndWith(const Leg& leg, double pace, Course& course) {
  course.clock_s = player_.At(leg, leg.length_s).clock_s;
  course.pace = pace;
  return course.Append(leg);
}

// From rest, in some cycles, gently: next to the ends of the plan, where a jerk for a part of a
// cycle would lead beyond it. The pace's second derivative is k for half of the time, then -k.
bool PaceChange::Creep(const PlayMoment& now, double pace, Course& course) {
  constexpr double kCycles = 8;
  const double half_s = kCycles / 2 * cycle_s_;
  const double reached = std::min(pace, (duration_s_ - now.clock_s) / (2 * half_s));
  const double bend = reached / (half_s * half_s);
  course.legs = 0;
  Leg leg = {now, half_s, true, bend};
  if (!Allows(leg, kByClock) || !course.Append(leg)) return false;
  leg = {player_.At(leg, half_s), half_s, true, -bend};
  return Allows(leg, kByClock) && EndWith(leg, reached, course);
}

// For a while at the most jerk towards a pace; then to exactly that, or to a constant one before.
bool PaceChange::Approach(const Node& begin, double while_s, bool may_land, const Goal& goal,
                          Course& course) {
  course.legs = 0;
  Node node = begin;
  if (!Advance(node, while_s, goal.lower ? Pick::kLow : Pick::kHigh, course)) return false;
  const size_t legs = course.legs;
  Leg landing;
  const bool lands = may_land && Land(node, goal.pace, landing);
  const bool nearer = Release(node, course) && goal.IsNearer(course.pace);
  // A landing that takes longer than it has to would be too early.
  constexpr double kLonger = 1.25;
  if (!lands || (nearer && landing.length_s > kLonger * course.LengthAfter(legs) + cycle_s_)) {
    return nearer;
  }
  course.legs = legs;
  return EndWith(landing, goal.pace, course);
}

// What is tried one after the other, the most promising first.
bool PaceChange::Try(int attempt, const Node& begin, const Range& jerks, const Goal& goal,
                     Course& course) {
  constexpr int kLanding = 5;
  constexpr int kCreeping = 6;
  if (attempt == 0) return Approach(begin, cycle_s_, false, goal, course);
  if (attempt < kLanding) {
    // As much of a cycle as there may be.
    double while_s = 0.999 * BrakeBeforeRest(begin.at.path, jerks);
    if (goal.pace > 0 || !(while_s > 0 && while_s < cycle_s_)) while_s = cycle_s_ / 2;
    return Approach(begin, std::ldexp(while_s, 1 - attempt), true, goal, course);
  }
  if (attempt == kLanding) {
    course.legs = 0;
    Leg leg;
    return Land(begin, goal.pace, leg) && EndWith(leg, goal.pace, course);
  }
  const double pace = std::ldexp(goal.pace, kCreeping - attempt);
  return begin.at.pace == 0 && Creep(begin.at, pace, course);
}

bool PaceChange::Find(const PlayMoment& now, double pace, const Course& otherwise, Course& found) {
  looks_.Begin();
  const Goal goal = {pace, otherwise.pace, pace < otherwise.pace};
  // A plan that is at a limit of acceleration can't be below it at once.
  const double need =
      looks_.LimitsAt(now.path.s, {}).AccelerationNeed(now.path.speed, now.path.acceleration);
  along_path_ = kAlongPath;
  along_path_.acceleration = std::clamp(need, kAlongPath.acceleration, kMostAcceleration);
  const Node begin = {now, looks_.LimitsAt(now.path.s, along_path_)};
  const Range jerks = begin.limits.Jerks(now.path.speed, now.path.acceleration, 0);
  // At the end of the plan there is a rest as well.
  const double planned_s = (duration_s_ - now.clock_s) / otherwise.pace;
  if (pace == 0 && LeastStop(now.path, jerks) >= planned_s) return false;
  constexpr int kAttempts = 24;
  const int first = std::exchange(next_attempt_, 0);
  for (int attempt = first; attempt < kAttempts; ++attempt) {
    if (Try(attempt, begin, jerks, goal, found)) return true;
    if (looks_.left()) continue;
    // The next cycle goes on there; with what was begun late in this one, from its beginning.
    next_attempt_ = attempt > first ? attempt : attempt + 1;
    return false;
  }
  return false;
}

}  // namespace qal
