#include "load.h"

#include <algorithm>
#include <cmath>

namespace qal {

namespace {

// NaN is larger than any.
double Larger(double a, double b) { return b <= a ? a : b; }

// What a moment of a motion needs.
Load LoadAt(const PathPoint& joints, const PathMoment& moment, const PathLimits& limits) {
  const auto [velocities, accelerations, jerks] = RatesOf(joints, moment);
  Load load = {std::fabs(moment.speed) / limits.speed,
               std::fabs(moment.acceleration) / limits.acceleration,
               std::fabs(moment.jerk) / limits.jerk};
  for (size_t j = 0; j < 6; ++j) {
    // What joints need between two looks is a little more than at them.
    constexpr double kBetween = 1.0003;
    load.velocity = std::max(load.velocity, std::fabs(velocities[j]) / limits.joint_velocity[j]);
    load.acceleration = std::max(
        load.acceleration, kBetween * std::fabs(accelerations[j]) / limits.joint_acceleration[j]);
    load.jerk = std::max(load.jerk, kBetween * std::fabs(jerks[j]) / limits.joint_jerk[j]);
  }
  return load;
}

}  // namespace

JointRates RatesOf(const PathPoint& joints, const PathMoment& moment) {
  const auto& [s, v, a, jerk] = moment;
  JointRates rates;
  for (size_t j = 0; j < 6; ++j) {
    const double first = joints.first[j];
    const double second = joints.second[j];
    rates[0][j] = first * v;
    rates[1][j] = second * v * v + first * a;
    rates[2][j] = joints.third[j] * v * v * v + 3 * second * v * a + first * jerk;
  }
  return rates;
}

double Load::Slowdown() const {
  return Larger(Larger(1.0, velocity), Larger(std::sqrt(acceleration), std::cbrt(jerk)));
}

Load Larger(const Load& a, const Load& b) {
  return {Larger(a.velocity, b.velocity), Larger(a.acceleration, b.acceleration),
          Larger(a.jerk, b.jerk)};
}

Load LoadMeter::At(double time_s) const { return LoadAt(here_, law_.At(time_s, piece_), limits_); }

void LoadMeter::MoveTo(double from_s, double to_s, Load& most) {
  // A law that is faster than its numbers can tell is none.
  constexpr double kShortestS = 1e-9;
  double step_s = to_s - from_s;
  for (double at_s = from_s; at_s < to_s;) {
    const double next_s = step_s < to_s - at_s ? at_s + step_s : to_s;
    const double s = std::clamp(law_.At(next_s, piece_).s, 0.0, 1.0);
    const size_t there = path_.PieceAt(s, path_piece_);
    const bool passes = there > path_piece_ + 1 || s - here_.s > path_.length(there) / 2;
    if (passes && step_s > kShortestS) {
      step_s /= 2;
      continue;
    }
    path_piece_ = there;
    here_ = path_.At(s, there);
    most = Larger(most, At(next_s));
    at_s = next_s;
    step_s *= 2;
  }
}

Load LoadMeter::Next() {
  // Within a piece nothing jumps, and what bends does so over some of its lengths.
  constexpr int kLooks = 4;
  const double begin_s = law_.begin_s(piece_);
  const double look_s = law_.length_s(piece_) / kLooks;
  Load most = At(begin_s);
  for (int i = 0; i < kLooks; ++i) MoveTo(begin_s + i * look_s, begin_s + (i + 1) * look_s, most);
  ++piece_;
  return most;
}

}  // namespace qal
