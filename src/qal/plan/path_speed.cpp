#include "path_speed.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "step_bounds.h"

namespace qal {

namespace {

// A state next to a region, moved into it, towards its middle. Rounding would otherwise add up.
PathState Within(const Region& region, PathState state) {
  PathState middle = {0, 0};
  const double share = 1 / static_cast<double>(region.size());
  for (size_t i = 0; i < region.size(); ++i) {
    middle.square += share * region[i].state.square;
    middle.acceleration += share * region[i].state.acceleration;
  }
  double part = 0;
  for (size_t i = 0; i < region.edges(); ++i) {
    const HalfPlane edge = region.Edge(i);
    const double out = edge.Excess(state);
    const double in = edge.Excess(middle);
    // A line has no inside; what is beside it is rounding.
    constexpr double kRounding = 1e-9;
    if (out > 0 && -in > kRounding * std::fabs(edge.bound)) part = std::max(part, out / (out - in));
  }
  return {state.square + part * (middle.square - state.square),
          state.acceleration + part * (middle.acceleration - state.acceleration)};
}

// The state after a step that accelerates as fast as the bounds allow.
PathState After(const StepLimits& step, const PathState& state, const Bounds& bounds,
                const Region& region) {
  const double low = bounds.Low(state);
  const double high = bounds.High(state);
  // By rounding there may be no room.
  const double d = low <= high ? high : (low + high) / 2;
  return Within(region, {state.square + 2 * step.h * (state.acceleration + step.after * d),
                         state.acceleration + d});
}

Region CutTo(const Region& region, Region line) {
  for (size_t i = 0; i < region.edges(); ++i) line.Cut(region.Edge(i));
  return line;
}

// The state of the most speed; without one, rest.
PathState Farthest(const Region& line) {
  PathState farthest = {0, 0};
  for (size_t i = 0; i < line.size(); ++i) {
    if (line[i].state.square > farthest.square) farthest = line[i].state;
  }
  return farthest;
}

// Of two steps' margins, what both leave.
Margin Lesser(const Margin& a, const Margin& b) {
  return {std::min(a.velocity, b.velocity), std::min(a.acceleration, b.acceleration),
          std::min(a.jerk, b.jerk)};
}

// The steps of a motion from place to place, and what is allowed at each place.
struct Passage {
  Passage(const LimitedPath& path, const PathState& from, const Draft& draft,
          const std::vector<Margin>& margin);

  bool from_rest() const { return start.square == 0; }
  // Leaves, of what is allowed, the states from which the end can be reached; false where there
  // are none at a place.
  bool LeadBack();
  size_t dead_end = 0;  // a place at which there are none
  // From the start on; empty where there is no way.
  std::vector<PathState> Drive();

  PathState start;
  size_t last;  // the place of the end
  std::vector<StepLimits> steps;
  std::vector<Region> regions;
  std::vector<Bounds> bounds = {};  // of steps last - 2 to the first that isn't from rest
};

Passage::Passage(const LimitedPath& path, const PathState& from, const Draft& draft,
                 const std::vector<Margin>& margin)
    : start(from), last(draft.places.size() - 1), steps(last), regions(last + 1) {
  const std::vector<double>& places = draft.places;
  std::vector<double> most(last + 1);
  size_t piece = 0;
  size_t section = 0;
  for (size_t k = 0; k < last; ++k) {
    steps[k] =
        ShapeOf(places[k + 1] - places[k], draft.speed[k], draft.half[k], draft.speed[k + 1]);
    const size_t here = path.joints.PieceAt(places[k], piece);
    section = path.SectionAt(places[k], section);
    const PathPoint joints = path.joints.At(places[k], here);
    const Margin both = Lesser(margin[k == 0 ? 0 : k - 1], margin[k]);
    const LimitedRates at(joints, path.sections[section]);
    double most_speed = at.most_speed();
    // Where sections meet both hold.
    std::optional<LimitedRates> other;
    if (section > 0 && places[k] == path.sections[section].begin) {
      other.emplace(joints, path.sections[section - 1]);
      most_speed = std::min(most_speed, other->most_speed());
    }
    most[k] = both.velocity * both.velocity * most_speed * most_speed;
    regions[k] = AllowedAt(at, both, most[k], draft.speed[k]);
    if (other) CutAccelerations(*other, both, regions[k]);

    const double middle = places[k] + steps[k].place * steps[k].h;
    piece = path.joints.PieceAt(middle, here);
    SetJerkRows(LimitedRates(path.joints.At(middle, piece), path.sections[section]), margin[k],
                steps[k]);
  }
  most[last] = most[last - 1];
  // Where the speed is at its limit the acceleration has to follow the limit: without this it would
  // go to and fro from place to place.
  for (size_t k = 1; k < last; ++k) {
    const double before = steps[k - 1].h;
    const double after = steps[k].h;
    const double slope = (most[k + 1] - most[k - 1]) / (before + after);
    double next = most[k] + after * slope;
    double previous = most[k] - before * slope;
    // Where the limit jumps there is no slope to speak of.
    constexpr double kJump = 0.2;
    if (!(std::min(next, previous) > kJump * most[k])) {
      next = std::max(next, std::min(most[k], most[k + 1]));
      previous = std::max(previous, std::min(most[k], most[k - 1]));
    }
    if (!std::isfinite(next) || !std::isfinite(previous)) continue;
    regions[k].Cut({1, 2 * after, next});
    regions[k].Cut({1, -2 * before, previous});
  }
}

bool Passage::LeadBack() {
  const PathState reversed = FromRest(steps[last - 1]);
  const auto [stop, deceleration] = Farthest(
      CutTo(regions[last - 1], Region::Between({0, 0}, {reversed.square, -reversed.acceleration})));
  // The fastest motions end at all the jerk and deceleration there is.
  constexpr double kNearly = 0.98;
  regions[last - 1] =
      Region::Between({kNearly * stop, kNearly * deceleration}, {stop, deceleration});
  const size_t first = from_rest() ? 1 : 0;
  bounds.reserve(last);
  for (size_t k = last - 1; k-- > first;) {
    bounds.emplace_back(steps[k], regions[k + 1]);
    bounds.back().CutImpossible(regions[k]);
    regions[k].Simplify();
    dead_end = k;
    if (regions[k].size() < 3) return false;
  }
  return true;
}

std::vector<PathState> Passage::Drive() {
  std::vector<PathState> states(last + 1, PathState{0, 0});
  size_t first = 0;
  if (from_rest()) {
    first = 1;
    states[1] = Farthest(CutTo(regions[1], Region::Between({0, 0}, FromRest(steps[0]))));
  } else {
    states[0] = Within(regions[0], start);
  }
  for (size_t k = first; k + 1 < last; ++k) {
    dead_end = k;
    if (!(states[k].square > 0)) return {};
    states[k + 1] = After(steps[k], states[k], bounds.back(), regions[k + 1]);
    bounds.pop_back();
  }
  if (!(states[last - 1].square > 0)) return {};
  return states;
}

}  // namespace

// For each place, from the last to the first, the region of states from which the end can be
// reached; then from the start on the highest acceleration that stays in these regions. The regions
// are convex as the limits are linear in b, a and d, but for the jerk's 1 / sqrt(b): reachability
// analysis of H. Pham and Q.-C. Pham, "A new approach to time-optimal path parameterization based
// on reachability analysis", IEEE T-RO 34 (2018), here with the acceleration as a state; the
// tangents of F. Debrouwere et al., "Time-optimal path following for robots with convex-concave
// constraints using sequential convex programming", IEEE T-RO 29 (2013). From rest and to rest the
// first and the last step are of constant jerk: b = 3/2 h a.
std::vector<PathState> FastestStates(const LimitedPath& path, const PathState& start,
                                     const Draft& draft, const std::vector<Margin>& margin,
                                     size_t& dead_end) {
  Passage passage(path, start, draft, margin);
  std::vector<PathState> states;
  if (passage.LeadBack()) states = passage.Drive();
  dead_end = passage.dead_end;
  return states;
}

}  // namespace qal
