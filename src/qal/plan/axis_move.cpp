#include "axis_move.h"

#include <algorithm>
#include <cmath>

namespace qal {

namespace {

// Rounds times of a move of about `duration_s` up to a common grid, the last digits of eight times
// that duration, on which their sums are exact: pieces that begin after days are as long as they
// should be. Rounded up, since every rate falls when a phase gets longer.
class Grid {
 public:
  explicit Grid(double duration_s) : large_(8 * duration_s), digit_(large_ * 0x1p-52) {}
  // Adding a larger number drops the digits that it has no room for.
  double Up(double time_s) const { return ((time_s + digit_) + large_) - large_; }

 private:
  double large_;
  double digit_;  // of `large_`, or up to twice that
};

SevenPhases OnGrid(const SevenPhases& exact) {
  const Grid grid(exact.duration_s());
  const auto up = [&grid](double time_s) { return time_s > 0 ? grid.Up(time_s) : 0; };
  return {up(exact.jerk_s), up(exact.hold_s), up(exact.cruise_s)};
}

// With d = j t (t + h) (2 t + h + c) for phases t, h and c, each case solved for what is free.
SevenPhases ExactPhases(double d, const AxisLimits& limits) {
  const auto [velocity, acceleration, jerk] = limits;
  // The longest jerk phase that neither acceleration nor velocity forbids, and its hold.
  double jerk_s = acceleration / jerk;
  double hold_s = velocity / acceleration - jerk_s;
  if (hold_s <= 0) {
    jerk_s = std::sqrt(velocity / jerk);
    hold_s = 0;
  }
  const double ramp_s = 2 * jerk_s + hold_s;
  const double cruise_s = d / velocity - ramp_s;
  if (cruise_s >= 0) return {jerk_s, hold_s, cruise_s};

  const double short_of = 2 * jerk * jerk_s * jerk_s * jerk_s;  // the way without hold and cruise
  if (d <= short_of) return {std::cbrt(d / (2 * jerk)), 0, 0};
  // (t + h) (2 t + h) = d / a, in a form in which h stays exact where it is small.
  const double beyond = (d - short_of) / (jerk * jerk_s);
  return {jerk_s, 2 * beyond / (3 * jerk_s + std::sqrt(jerk_s * jerk_s + 4 * d / (jerk * jerk_s))),
          0};
}

}  // namespace

SevenPhases FastestPhases(double distance, const AxisLimits& limits) {
  return distance == 0 ? SevenPhases{0, 0, 0} : OnGrid(ExactPhases(std::fabs(distance), limits));
}

SevenPhases SlowedPhases(const SevenPhases& fastest, double duration_s) {
  const double own_s = fastest.duration_s();
  if (!(own_s > 0) || own_s == duration_s) return fastest;
  const double slower = duration_s / own_s;
  SevenPhases slowed =
      OnGrid({fastest.jerk_s * slower, fastest.hold_s * slower, fastest.cruise_s * slower});
  // The longest kind of phase makes up for what was rounded, so that the sum is exact.
  if (slowed.cruise_s > 0) {
    slowed.cruise_s = std::max(0.0, duration_s - 4 * slowed.jerk_s - 2 * slowed.hold_s);
  }
  if (slowed.cruise_s == 0 && slowed.hold_s > 0) {
    slowed.hold_s = std::max(0.0, (duration_s - 4 * slowed.jerk_s) / 2);
  }
  if (slowed.cruise_s == 0 && slowed.hold_s == 0) slowed.jerk_s = duration_s / 4;
  return slowed;
}

void AddPieces(const SevenPhases& phases, double from, double distance, AxisMotion& motion) {
  const auto [jerk_s, hold_s, cruise_s] = phases;
  if (distance == 0 || !(jerk_s > 0)) return motion.Add(0, {from, 0, 0, 0});
  const double ramp_s = 2 * jerk_s + hold_s;
  const double velocity = distance / (ramp_s + cruise_s);
  // Divisions that don't wait for each other.
  const double acceleration = distance / ((ramp_s + cruise_s) * (jerk_s + hold_s));
  const double jerk = distance / ((ramp_s + cruise_s) * ((jerk_s + hold_s) * jerk_s));
  // Where the ramp's phases end, from where it begins.
  const double gained = acceleration * jerk_s / 2;
  const double first = gained * jerk_s / 3;
  const double second = first + hold_s * (gained + acceleration * hold_s / 2);
  const double third = velocity * ramp_s / 2;
  const double to = from + distance;
  const double down_s = ramp_s + cruise_s;
  motion.Add(0, {from, 0, 0, jerk});
  motion.Add(jerk_s, {from + first, gained, acceleration, 0});
  motion.Add(jerk_s + hold_s, {from + second, velocity - gained, acceleration, -jerk});
  motion.Add(ramp_s, {from + third, velocity, 0, 0});
  motion.Add(down_s, {to - third, velocity, 0, -jerk});
  motion.Add(down_s + jerk_s, {to - second, velocity - gained, -acceleration, 0});
  motion.Add(down_s + jerk_s + hold_s, {to - first, gained, -acceleration, jerk});
}

}  // namespace qal
