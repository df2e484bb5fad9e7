#include "path_speed.h"

#include <algorithm>
#include <cmath>

namespace qal {

namespace {

constexpr size_t kRows = 7;  // six joints, and s itself
constexpr double kInfinity = INFINITY;

// What may be at a place: b is the square of the speed, a the acceleration.
struct PlaceLimits {
  double most_square;
  double first[kRows];  // |second * b + first * a| <= 1
  double second[kRows];
};

// The step from a place to the next, of length h in s, at a constant jerk: the acceleration changes
// by d, in proportion to time. How far along the step that is, the reference's speeds say:
//
//     after the step     b1 = b0 + 2 h (a0 + after * d),              a1 = a0 + d
//     at half its time   b  = b0 + 2 h (place * a0 + halfway * d),    a  = a0 + d / 2
//
// The jerk over the speed is third * b + second * a + first * d of a joint, at half the time, which
// is at most its limit over the speed; in place of 1 / sqrt(b) its tangent `at_zero - slope * b`,
// which is less everywhere.
struct StepLimits {
  double h;
  double after;
  double place;
  double halfway;
  double first[kRows];
  double second[kRows];
  double third[kRows];
  double at_zero;
  double slope;
  double least_square;  // at half the time
};

PlaceLimits LimitsAt(const PathPoint& q, const PathLimits& limits, double margin) {
  PlaceLimits at;
  double most_speed = limits.speed;
  for (size_t j = 0; j < 6; ++j) {
    most_speed = std::min(most_speed, limits.joint_velocity[j] / std::fabs(q.first[j]));
    const double limit = margin * limits.joint_acceleration[j];
    at.first[j] = q.first[j] / limit;
    at.second[j] = q.second[j] / limit;
  }
  at.first[6] = 1 / (margin * limits.acceleration);
  at.second[6] = 0;
  at.most_square = most_speed * most_speed;
  return at;
}

// Motions that nearly stop on the way are none of the fastest, and the tangents say little of them.
double LeastSquare(double reference) {
  constexpr double kSlowest = 0.2;
  return kSlowest * kSlowest * reference * reference;
}

// By the reference's speeds at the step's ends and at half its time: the speed is quadratic in
// time.
StepLimits ShapeOf(double h, double v0, double half, double v1) {
  StepLimits step;
  step.h = h;
  const double sum = v0 + 4 * half + v1;
  step.after = (2 * half + v1) / sum;
  step.place = (5 * v0 + 8 * half - v1) / (4 * sum);
  step.halfway = (3 * v0 + 10 * half - v1) / (16 * sum);
  const double speed = sum / 6;
  step.at_zero = 1.5 / speed;
  step.slope = 0.5 / (speed * speed * speed);
  step.least_square = LeastSquare(speed);
  return step;
}

void SetJerkRows(const PathPoint& q, const PathLimits& limits, double margin, StepLimits& step) {
  for (size_t j = 0; j < 6; ++j) {
    const double limit = margin * limits.joint_jerk[j];
    step.first[j] = q.first[j] / (limit * step.h);
    step.second[j] = 3 * q.second[j] / limit;
    step.third[j] = q.third[j] / limit;
  }
  step.first[6] = 1 / (margin * limits.jerk * step.h);
  step.second[6] = 0;
  step.third[6] = 0;
}

// What a place allows at all.
Region AllowedAt(const PlaceLimits& at, double reference) {
  // Nor do they say much of much faster ones.
  constexpr double kFastest = 1.5;
  const double fastest = std::min(kFastest * kFastest * reference * reference, at.most_square);
  const double least = std::min(LeastSquare(reference), fastest);
  const double most = 1 / at.first[6];
  Region region({least, -most}, {fastest, most});
  for (size_t i = 0; i < 6; ++i) {
    if (std::fabs(at.second[i]) * fastest + std::fabs(at.first[i]) * most <= 1) continue;
    region.Cut({at.second[i], at.first[i], 1});
    region.Cut({-at.second[i], -at.first[i], 1});
  }
  return region;
}

// Bounds of one side of a number: each linear in a state.
class Side {
 public:
  void Add(double bound, double square, double acceleration) {
    bound_[count_] = bound;
    square_[count_] = square;
    acceleration_[count_] = acceleration;
    ++count_;
  }
  double At(size_t i, const PathState& state) const {
    return bound_[i] - square_[i] * state.square - acceleration_[i] * state.acceleration;
  }
  // The least bound at a state, and which it is.
  double Least(const PathState& state) const {
    // Two at a time: the processor has them both under way.
    double even = kInfinity;
    double odd = kInfinity;
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
  // Where the sum of two bounds is not negative.
  friend HalfPlane Meeting(const Side& a, size_t i, const Side& b, size_t j) {
    return {a.square_[i] + b.square_[j], a.acceleration_[i] + b.acceleration_[j],
            a.bound_[i] + b.bound_[j]};
  }

 private:
  static constexpr size_t kMost = 2 * kRows + 1 + Region::kFewCorners;

  size_t count_ = 0;
  double bound_[kMost];
  double square_[kMost];
  double acceleration_[kMost];
};

// What bounds the change d of a step, seen from the state before it. Of jerk rows there are two
// each; one row keeps the motion going, and one for each edge of the region after the step leads
// into it.
class Bounds {
 public:
  Bounds(const StepLimits& step, const Region& after) {
    const double square_by_a = 2 * step.h * step.place;
    const double square_by_d = 2 * step.h * step.halfway;
    // At half the time: sign * jerk <= at_zero - slope * square.
    for (size_t i = 0; i < kRows; ++i) {
      const double by_d = step.first[i] + step.third[i] * square_by_d + step.second[i] / 2;
      for (const double sign : {1.0, -1.0}) {
        const double square = step.slope + sign * step.third[i];
        Add(sign * by_d + step.slope * square_by_d,
            {square, square_by_a * square + sign * step.second[i], step.at_zero});
      }
    }
    Add(-square_by_d, {-1, -square_by_a, -step.least_square});
    for (size_t i = 0; i < after.edges(); ++i) {
      const HalfPlane edge = after.Edge(i);
      Add(edge.square * 2 * step.h * step.after + edge.acceleration,
          {edge.square, edge.square * 2 * step.h + edge.acceleration, edge.bound});
    }
  }

  double Low(const PathState& state) const { return -below_.Least(state); }
  double High(const PathState& state) const { return above_.Least(state); }

  // Takes away the states from which no d is possible.
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

// Elimination of d (J. Fourier, T. Motzkin) as far as it is needed: where at a corner a lower bound
// lies above an upper one, the two are what to cut by. A corner that is right stays so.
void Bounds::CutImpossible(Region& region) const {
  constexpr double kRounding = 1e-9;
  constexpr int kMostCuts = 30;
  for (int cuts = 0; cuts < kMostCuts; ++cuts) {
    double worst = 0;
    size_t where = 0;
    for (size_t i = 0; i < region.size(); ++i) {
      Region::Corner& corner = region[i];
      if (!corner.known) {
        const double low = Low(corner.state);
        const double high = High(corner.state);
        corner.outside = low - high - kRounding * (std::fabs(low) + std::fabs(high));
        corner.known = true;
      }
      if (!(corner.outside > worst)) continue;
      worst = corner.outside;
      where = i;
    }
    if (worst == 0) return;
    const PathState state = region[where].state;
    region.Cut(Meeting(above_, above_.IndexOfLeast(state), below_, below_.IndexOfLeast(state)));
  }
  // What is left may be impossible.
  region.KeepInside();
}

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

// The most jerk of s where the motion starts or ends.
double JerkAtRest(const StepLimits& step) {
  double largest = 0;
  for (const double first : step.first) largest = std::max(largest, std::fabs(first));
  return 1 / (largest * step.h);
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
std::vector<PathState> FastestStates(const JointPath& path, const PathLimits& limits,
                                     const Draft& draft, const std::vector<Margin>& margin) {
  const std::vector<double>& places = draft.places;
  const size_t last = places.size() - 1;
  std::vector<double> most(last + 1);
  std::vector<StepLimits> steps(last);
  std::vector<Region> regions(last + 1);
  size_t piece = 0;
  for (size_t k = 0; k < last; ++k) {
    steps[k] =
        ShapeOf(places[k + 1] - places[k], draft.speed[k], draft.half[k], draft.speed[k + 1]);
    const double middle = places[k] + steps[k].place * steps[k].h;
    piece = path.PieceAt(middle, piece);
    SetJerkRows(path.At(middle, piece), limits, margin[k].jerk, steps[k]);
    const size_t here = path.PieceAt(places[k], piece > 0 ? piece - 1 : 0);
    const PlaceLimits at =
        LimitsAt(path.At(places[k], here), limits,
                 std::min(margin[k == 0 ? 0 : k - 1].acceleration, margin[k].acceleration));
    most[k] = at.most_square;
    regions[k] = AllowedAt(at, draft.speed[k]);
  }
  most[last] = most[last - 1];
  // Where the speed is at its limit the acceleration has to follow the limit: without this it would
  // go to and fro from place to place.
  for (size_t k = 1; k < last; ++k) {
    const double before = steps[k - 1].h;
    const double after = steps[k].h;
    const double slope = (most[k + 1] - most[k - 1]) / (before + after);
    regions[k].Cut({1, 2 * after, most[k] + after * slope});
    regions[k].Cut({1, -2 * before, most[k] - before * slope});
  }
  const auto from_rest = [](const StepLimits& step) {
    // b = 3/2 h a, with a^3 = 6 h j^2.
    const double jerk = JerkAtRest(step);
    const double a = std::cbrt(6 * step.h * jerk * jerk);
    return PathState{1.5 * step.h * a, a};
  };
  const auto within = [](Region line, const Region& region) {
    for (size_t i = 0; i < region.edges(); ++i) line.Cut(region.Edge(i));
    return line;
  };
  const auto [stop, deceleration] = from_rest(steps[last - 1]);
  // The fastest motions end at all the jerk there is.
  constexpr double kNearly = 0.98;
  regions[last - 1] =
      within(Region::Between({kNearly * stop, -kNearly * deceleration}, {stop, -deceleration}),
             regions[last - 1]);
  std::vector<Bounds> bounds;
  for (size_t k = last - 1; k-- > 1;) {
    bounds.emplace_back(steps[k], regions[k + 1]);
    bounds.back().CutImpossible(regions[k]);
    regions[k].Simplify();
    if (regions[k].size() == 0) return {};
  }
  const Region started = within(Region::Between({0, 0}, from_rest(steps[0])), regions[1]);
  std::vector<PathState> states(last + 1, PathState{0, 0});
  for (size_t i = 0; i < started.size(); ++i) {
    const PathState& state = started[i].state;
    if (state.acceleration > states[1].acceleration) states[1] = state;
  }
  if (!(states[1].square > 0)) return {};
  for (size_t k = 1; k + 1 < last; ++k) {
    states[k + 1] = After(steps[k], states[k], bounds.back(), regions[k + 1]);
    bounds.pop_back();
    if (!(states[k + 1].square > 0)) return {};
  }
  return states;
}

}  // namespace qal
