#include "axis_reach.h"

#include <algorithm>
#include <cmath>

#include "reach_laws.h"

namespace qal {

namespace {

// Relative to the top velocity and the way at it. A state that a motion was sampled at is off by
// roundings of its times; what is left of that motion has to be found all the same, since there may
// be none that is nearly as quick.
constexpr double kSame = 1e-13;

}  // namespace

Reach::Reach(const AxisTask& task) : task_(task) {
  const auto& [v0, a0, v1, a1, distance, top, resolution] = task;
  u0_ = v0 - a0 * a0 / 2;
  u1_ = v1 - a1 * a1 / 2;
  earlier_ = a0 - a1;
  before_ = a0 * (u0_ + a0 * a0 / 6) - a1 * (u1_ + a1 * a1 / 6);
  sum_ = u0_ + u1_;
  change_ = std::fabs(u1_ - u0_);
  if (change_ < 1) {
    const double root = std::sqrt(1 - change_);
    no_hold_begin_ = 2 * change_ / (1 + root);
    no_hold_end_ = 2 * (1 + root);
  } else {
    no_hold_begin_ = 0;
    no_hold_end_ = -1;
  }
  two_holds_begin_ = 4 + change_;
  const auto ramp = [](double change) {
    return change < 1 ? 2 * std::sqrt(std::max(0.0, change)) : 1 + change;
  };
  const double up = ramp(top - u0_);
  const double down = ramp(top - u1_);
  cruise_begin_ = up + down;
  cruise_from_ = (up * (u0_ + top) + down * (u1_ + top)) / 2;
}

double Reach::Displacement(double time) const {
  if (time >= cruise_begin_) {
    return cruise_from_ + task_.top_velocity * (time - cruise_begin_);
  }
  if (time >= two_holds_begin_) return (time * (time + 2 * (sum_ - 1)) - change_ * change_) / 4;
  if (time >= no_hold_begin_ && time <= no_hold_end_) {
    return NoHold{sum_, change_}.Value(NoHold::FromTime(time));
  }
  const OneHold law{std::max(u0_, u1_), change_};
  return law.Value(law.FromTime(time));
}

// The most that the velocity can change in a time, by a peak of the acceleration.
double Reach::NextVelocity(double time) const {
  const double a0 = task_.start_acceleration;
  const double a1 = task_.end_acceleration;
  const double needed =
      task_.end_velocity - task_.start_velocity + (a0 * a0 + a1 * a1) / 2;  // the peak's square
  const double peak = (time + a0 + a1) / 2;
  const double most = peak <= 1 ? peak * peak : 2 * peak - 1;
  if (most >= needed - kSame * task_.top_velocity) return time;
  return (needed <= 1 ? 2 * std::sqrt(needed) : needed + 1) - a0 - a1;
}

double Reach::NextDisplacement(double time) const {
  const double from = time + earlier_;
  const double target = task_.distance + before_;
  if (Displacement(from) >= target - Resolution(time)) return time;
  const double end = cruise_begin_;
  const OneHold one_hold{std::max(u0_, u1_), change_};
  const NoHold no_hold{sum_, change_};
  double next = FirstReached(one_hold, from, std::min(no_hold_begin_, end), target);
  if (next == kNever) {
    next =
        FirstReached(no_hold, std::max(from, no_hold_begin_), std::min(no_hold_end_, end), target);
  }
  if (next == kNever) {
    next = FirstReached(one_hold, std::max(from, no_hold_end_), std::min(two_holds_begin_, end),
                        target);
  }
  if (next == kNever) {
    if (from < end && two_holds_begin_ < end && cruise_from_ >= target) {
      // The only rise is behind the least displacement, at 1 - sum.
      const double half = sum_ - 1;
      const double root = std::sqrt(std::max(0.0, half * half + change_ * change_ + 4 * target));
      next = half > 0 ? (change_ * change_ + 4 * target) / (half + root) : root - half;
      next = std::max(next, std::max(from, two_holds_begin_));
    } else {
      next = std::max(from, end + (target - cruise_from_) / task_.top_velocity);
    }
  }
  return next - earlier_;
}

double Reach::Resolution(double time) const {
  return task_.resolution + kSame * task_.top_velocity * time;
}

double Reach::NextTime(double time) const { return NextDisplacement(NextVelocity(time)); }

AccelerationProfile Reach::CruiseProfile(double cruise) const {
  const double a0 = task_.start_acceleration;
  const double a1 = task_.end_acceleration;
  const double up = task_.top_velocity - u0_;
  const double down = task_.top_velocity - u1_;
  const double peak = up < 1 ? std::max(a0, std::sqrt(std::max(0.0, up))) : 1;
  const double trough = down < 1 ? std::min(a1, -std::sqrt(std::max(0.0, down))) : -1;
  AccelerationProfile profile;
  profile.Add(peak - a0, a0, 1);
  profile.Add(up - 1, 1, 0);
  profile.Add(peak, peak, -1);
  profile.Add(cruise, 0, 0);
  profile.Add(-trough, 0, -1);
  profile.Add(down - 1, -1, 0);
  profile.Add(a1 - trough, trough, 1);
  return profile;
}

AccelerationProfile Reach::FarthestProfile(double time) const {
  const double between = time + earlier_;
  if (between >= cruise_begin_) return CruiseProfile(between - cruise_begin_);
  const double a0 = task_.start_acceleration;
  const double a1 = task_.end_acceleration;
  const double change = u1_ - u0_;
  double peak = 1;
  double trough = -1;
  double high_hold = 0;
  double low_hold = 0;
  if (between >= two_holds_begin_) {
    high_hold = (between - 4 + change) / 2;
    low_hold = (between - 4 - change) / 2;
  } else {
    const double x = std::sqrt(std::max(0.0, between - change_));
    if (change > 0) {
      trough = std::min(a1, 1 - x);
      high_hold = trough * trough + change - 1;
    } else {
      peak = std::max(a0, x - 1);
      low_hold = peak * peak - change - 1;
    }
    if (high_hold + low_hold <= 0) {
      // There is room for the peak between the ends, whatever the rounding of a change near 0.
      const double m = between / 2;
      peak = std::max(a0, std::min(m > 0 ? (m + change / m) / 2 : 0, a1 + m));
      trough = peak - m;
    }
  }
  AccelerationProfile profile;
  profile.Add(peak - a0, a0, 1);
  profile.Add(high_hold, peak, 0);
  profile.Add(peak - trough, peak, -1);
  profile.Add(low_hold, trough, 0);
  profile.Add(a1 - trough, trough, 1);
  return profile;
}

}  // namespace qal
