#include "course.h"

#include <algorithm>
#include <cmath>

namespace qal {

namespace {

// A moment of the plan at another pace, whose first two derivatives by time are given.
PathMoment Paced(const PathMoment& plan, double pace, double rate, double bend) {
  const auto& [s, v, a, j] = plan;
  return {s, v * pace, a * pace * pace + v * rate,
          j * pace * pace * pace + 3 * a * pace * rate + v * bend};
}

}  // namespace

PathMoment LegPlayer::PlanAt(double clock_s) {
  clock_s = std::clamp(clock_s, 0.0, law_.duration_s());
  piece_ = law_.PieceAt(clock_s, piece_);
  return law_.At(clock_s, piece_);
}

double LegPlayer::PieceLeft(double clock_s) {
  piece_ = law_.PieceAt(clock_s, piece_);
  return law_.begin_s(piece_) + law_.length_s(piece_) - clock_s;
}

// Newton's method; from a time that is a cycle or so off it takes two steps. Towards rests, where
// it would leave what the time is known to be between, that is halved.
PathMoment LegPlayer::PlanAt(double s, double& clock_s) {
  constexpr int kMostSteps = 60;
  constexpr double kRounding = 1e-15;
  double before_s = 0;
  double after_s = law_.duration_s();
  clock_s = std::clamp(clock_s, before_s, after_s);
  PathMoment plan = PlanAt(clock_s);
  for (int i = 0; i < kMostSteps; ++i) {
    const double off = plan.s - s;
    if (std::fabs(off) <= kRounding * std::fabs(s)) break;
    (off < 0 ? before_s : after_s) = clock_s;
    double next_s = clock_s - off / plan.speed;
    if (!(before_s < next_s && next_s < after_s)) next_s = (before_s + after_s) / 2;
    if (next_s == clock_s) break;
    clock_s = next_s;
    plan = PlanAt(clock_s);
  }
  return plan;
}

PlayMoment LegPlayer::At(double clock_s, double pace) {
  return {Paced(PlanAt(clock_s), pace, 0, 0), clock_s, pace, 0};
}

PlayMoment LegPlayer::At(const Leg& leg, double after_s) {
  const double t = after_s;
  const double rate = leg.from.pace_rate;
  if (leg.by_clock) {
    const double bend = leg.pace_bend;
    PlayMoment at = {{},
                     leg.from.clock_s + t * (leg.from.pace + t * (rate / 2 + t * bend / 6)),
                     leg.from.pace + t * (rate + t * bend / 2),
                     rate + t * bend};
    at.path = Paced(PlanAt(at.clock_s), at.pace, at.pace_rate, bend);
    return at;
  }
  const auto& [s, v, a, j] = leg.from.path;
  PlayMoment at = {{s + t * (v + t * (a / 2 + t * j / 6)), v + t * (a + t * j / 2), a + t * j, j},
                   leg.from.clock_s + t * (leg.from.pace + t * rate / 2),
                   leg.from.pace,
                   0};
  const PathMoment plan = PlanAt(at.path.s, at.clock_s);
  if (plan.speed > 0) {
    at.pace = at.path.speed / plan.speed;
    at.pace_rate = (at.path.acceleration - plan.acceleration * at.pace * at.pace) / plan.speed;
  }
  return at;
}

}  // namespace qal
