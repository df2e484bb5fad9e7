#include "joint_metrics.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>

#include "finite_differences.h"
#include "quintic.h"

namespace qal::io {

void Raise(std::optional<Peak>& peak, double value, size_t sample, int joint) {
  const double magnitude =
      std::isnan(value) ? std::numeric_limits<double>::infinity() : std::fabs(value);
  if (!peak || magnitude > peak->value) peak = Peak{magnitude, sample, joint};
}

namespace {

void RaiseSpeed(Metrics& metrics, const Arm& arm, size_t joint, double speed, size_t sample) {
  Raise(metrics[kJointSpeed][joint], speed, sample);
  Raise(metrics[kMotorSpeed][joint], MotorRpm(arm, joint, speed), sample);
}

}  // namespace

void MeasureByDifferences(const FileTrajectory& trajectory, const Arm& arm, Metrics& metrics) {
  const FiniteDifferences rates(trajectory);
  // An interval without a positive duration has no rates: it is one of the times that don't
  // increase.
  const auto timed = [&](size_t first, size_t last) {
    while (first <= last && rates.Duration(first) > 0.0) ++first;
    return first > last;
  };
  for (size_t interval = 0; interval <= trajectory.size(); ++interval) {
    const size_t sample = std::min(interval, trajectory.size() - 1);
    const size_t before = interval == 0 ? 0 : interval - 1;
    const size_t after = std::min(interval + 1, trajectory.size());
    for (size_t joint = 0; joint < 6; ++joint) {
      if (timed(interval, interval)) {
        RaiseSpeed(metrics, arm, joint, rates.JointSpeed(interval, joint), sample);
      }
      if (timed(before, after)) {
        Raise(metrics[kJointJerk][joint], rates.JointJerk(interval, joint), sample);
      }
      if (interval < trajectory.size() && timed(interval, after)) {
        const double acceleration = rates.JointAcceleration(interval, joint);
        Raise(metrics[kJointAcceleration][joint], acceleration, interval);
      }
    }
  }
}

namespace {

// Of a motion within its jerk J, the quintic through samples a time h apart has at most this much
// more velocity (times J h^2) and acceleration (times J h) than the motion: the largest that a
// linear program over all motions finds is 0.01386 and 0.05106.
constexpr double kVelocityOvershoot = 0.014;
constexpr double kAccelerationOvershoot = 0.0515;

// The least that the acceleration has to reach between two samples to have this mean, when it
// changes by `change` at most in this time: it rises as fast to a level, keeps it, and falls as
// fast.
double LeastPeak(double from, double to, double mean, double change) {
  const double sum = from + to + change;
  const double square = sum * sum - 2 * (from * from + to * to + 2 * change * mean);
  // Without a root no level is enough: it rises and falls.
  const double level = (sum - std::sqrt(std::max(square, 0.0))) / 2;
  return std::max({from, to, level});
}

Quintic::End EndOf(const FileSample& sample, size_t joint) {
  return {sample.joints[joint], (*sample.velocities)[joint], (*sample.accelerations)[joint]};
}

}  // namespace

void MeasureByRates(const FileTrajectory& trajectory, const Arm& arm, const Joints& jerk_rad_s3,
                    Metrics& metrics) {
  const FiniteDifferences differences(trajectory);
  for (size_t i = 0; i < trajectory.size(); ++i) {
    for (size_t joint = 0; joint < 6; ++joint) {
      const Quintic::End end = EndOf(trajectory[i], joint);
      RaiseSpeed(metrics, arm, joint, end.velocity, i);
      Raise(metrics[kJointAcceleration][joint], end.acceleration, i);
      const double duration_s = differences.Duration(i);
      if (i == 0 || !(duration_s > 0)) continue;
      const Quintic::End before = EndOf(trajectory[i - 1], joint);
      const Quintic between(before, end, duration_s);
      const double hidden = jerk_rad_s3[joint] * duration_s;  // acceleration that jerk can change
      const double speed = between.PeakVelocity() - kVelocityOvershoot * hidden * duration_s;
      const double mean = (end.velocity - before.velocity) / duration_s;
      const double a0 = before.acceleration;
      const double a1 = end.acceleration;
      const double acceleration =
          std::max({between.PeakAcceleration() - kAccelerationOvershoot * hidden,
                    LeastPeak(a0, a1, mean, hidden), LeastPeak(-a0, -a1, -mean, hidden)});
      if (!(speed <= 0)) RaiseSpeed(metrics, arm, joint, speed, i);
      if (!(acceleration <= 0)) Raise(metrics[kJointAcceleration][joint], acceleration, i);
      Raise(metrics[kJointJerk][joint], (end.acceleration - before.acceleration) / duration_s, i);
    }
  }
}

namespace {

// A quantity of one joint, and what samples say is its rate.
class RateCheck {
 public:
  using Value = std::function<double(const FileSample&)>;
  RateCheck(const FileTrajectory& trajectory, Value value, Value rate)
      : trajectory_(trajectory), value_(std::move(value)), rate_(std::move(rate)) {}

  // How far the mean of the rates at an interval's ends is from the quantity's mean rate over it,
  // beyond what changes of the mean rate around there explain. The two are the same while the rate
  // changes evenly, and differ by half of a step of its change at most.
  double Excess(size_t interval) const {
    const double ends = (rate_(trajectory_[interval - 1]) + rate_(trajectory_[interval])) / 2;
    double least = std::numeric_limits<double>::infinity();
    double most = -least;
    const size_t last = std::min(interval + 1, trajectory_.size() - 1);
    for (size_t i = interval < 2 ? 0 : interval - 2; i <= last; ++i) {
      const double change = MeanRate(i + 1) - MeanRate(i);
      least = std::min(least, change);
      most = std::max(most, change);
    }
    return std::fabs(MeanRate(interval) - ends) - std::max(most - least, 0.0) / 2;
  }

 private:
  // Before the first sample and after the last, the rate there goes on.
  double MeanRate(size_t interval) const {
    if (interval == 0) return rate_(trajectory_.front());
    if (interval == trajectory_.size()) return rate_(trajectory_.back());
    return (value_(trajectory_[interval]) - value_(trajectory_[interval - 1])) /
           FiniteDifferences(trajectory_).Duration(interval);
  }

  const FileTrajectory& trajectory_;
  Value value_;
  Value rate_;
};

void MeasureJointAgreement(const FileTrajectory& trajectory, const SampleParts& parts, size_t joint,
                           double jerk_rad_s3, Metrics& metrics) {
  const auto position = [joint](const FileSample& sample) { return sample.joints[joint]; };
  const auto velocity = [joint](const FileSample& sample) { return (*sample.velocities)[joint]; };
  const auto acceleration = [joint](const FileSample& sample) {
    return (*sample.accelerations)[joint];
  };
  const RateCheck velocities(trajectory, position, velocity);
  const RateCheck accelerations(trajectory, velocity, acceleration);
  const auto raise = [&](MetricIndex metric, double excess, size_t sample) {
    Raise(metrics[metric][0], excess < 0 ? 0 : excess, sample, static_cast<int>(joint));
  };
  for (size_t i = 1; i < trajectory.size(); ++i) {
    const double h = FiniteDifferences(trajectory).Duration(i);
    if (!(h > 0)) continue;
    // What a motion within its jerk may differ by, wherever between the samples the jerk changes.
    if (parts.velocities) raise(kSpeedError, velocities.Excess(i) - jerk_rad_s3 * h * h / 12, i);
    if (parts.velocities && parts.accelerations) {
      raise(kAccelerationError, accelerations.Excess(i) - jerk_rad_s3 * h / 4, i);
    }
  }
  for (const size_t end : {size_t{0}, trajectory.size() - 1}) {
    if (parts.velocities) raise(kEndSpeed, std::fabs(velocity(trajectory[end])), end);
    if (parts.accelerations) raise(kEndAcceleration, std::fabs(acceleration(trajectory[end])), end);
  }
}

}  // namespace

void MeasureAgreement(const FileTrajectory& trajectory, const Joints& jerk_rad_s3,
                      Metrics& metrics) {
  const SampleParts parts = PartsOf(trajectory);
  for (size_t joint = 0; joint < 6; ++joint) {
    MeasureJointAgreement(trajectory, parts, joint, jerk_rad_s3[joint], metrics);
  }
}

}  // namespace qal::io
