#include <cmath>

#include "joint_move.h"
#include "quadratic.h"
#include "stretches.h"

namespace qal {

namespace {

// From which part of its limit on a rate is at it.
constexpr double kBindsFrom = 0.999;

// The stretches of a piece from `begin_s` to `end_s` in which a rate, which is `rate` from where it
// begins, is at its limit.
void AddStretches(const Quadratic& rate, double limit, double begin_s, double end_s,
                  Stretches& stretches) {
  const double bound = kBindsFrom * limit;
  Times<5> changes;
  AddRoots(rate, bound, end_s - begin_s, changes);
  AddRoots(rate, -bound, end_s - begin_s, changes);
  changes.Add(end_s - begin_s);
  double before = 0;
  for (const double change : changes) {
    if (std::fabs(rate.At((before + change) / 2)) >= bound) {
      stretches.Add(begin_s + before, begin_s + change);
    }
    before = change;
  }
}

}  // namespace

std::vector<Binding> JointMotion::bindings() const {
  std::vector<Binding> bindings;
  for (int j = 0; j < 6; ++j) {
    const AxisMotion& pieces = joints_[static_cast<size_t>(j)];
    const AxisLimits& most = limits_[static_cast<size_t>(j)];
    Stretches velocity;
    Stretches acceleration;
    Stretches jerk;
    for (int i = 0; i < pieces.size(); ++i) {
      const double begin_s = pieces.begin_s(i);
      const double end_s = i + 1 < pieces.size() ? pieces.begin_s(i + 1) : duration_s_;
      if (!(begin_s < end_s)) continue;
      const Cubic& piece = pieces.cubic(i);
      AddStretches({piece.velocity, piece.acceleration, piece.jerk / 2}, most.velocity, begin_s,
                   end_s, velocity);
      AddStretches({piece.acceleration, piece.jerk, 0}, most.acceleration, begin_s, end_s,
                   acceleration);
      AddStretches({piece.jerk, 0, 0}, most.jerk, begin_s, end_s, jerk);
    }
    velocity.AppendTo(bindings, Limit::kJointVelocity, j, duration_s_);
    acceleration.AppendTo(bindings, Limit::kJointAcceleration, j, duration_s_);
    jerk.AppendTo(bindings, Limit::kJointJerk, j, duration_s_);
  }
  SortByShare(bindings);
  return bindings;
}

}  // namespace qal
