#include "finite_differences.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "../solver/closed_form/angles.h"

namespace qal::io {

double FiniteDifferences::Duration(size_t interval) const {
  if (trajectory_.size() < 2) return 1.0;
  const size_t end = std::clamp<size_t>(interval, 1, trajectory_.size() - 1);
  return trajectory_[end].time_s - trajectory_[end - 1].time_s;
}

double FiniteDifferences::JointSpeed(size_t interval, size_t joint) const {
  const double duration = Duration(interval);
  if (!(duration > 0.0)) return std::numeric_limits<double>::quiet_NaN();
  if (interval == 0 || interval == trajectory_.size()) return 0.0;
  const double from = trajectory_[interval - 1].joints[joint];
  return (trajectory_[interval].joints[joint] - from) / duration;
}

double FiniteDifferences::JointSpeedAt(size_t sample, size_t joint) const {
  if (sample == 0 || sample + 1 == trajectory_.size()) return 0.0;
  const double before = Duration(sample);
  const double after = Duration(sample + 1);
  return (JointSpeed(sample, joint) * after + JointSpeed(sample + 1, joint) * before) /
         (before + after);
}

double FiniteDifferences::JointAcceleration(size_t sample, size_t joint) const {
  const double change = JointSpeed(sample + 1, joint) - JointSpeed(sample, joint);
  return change / ((Duration(sample) + Duration(sample + 1)) / 2.0);
}

double FiniteDifferences::JointJerk(size_t interval, size_t joint) const {
  const double before = interval == 0 ? 0.0 : JointAcceleration(interval - 1, joint);
  const double after = interval == trajectory_.size() ? 0.0 : JointAcceleration(interval, joint);
  return (after - before) / Duration(interval);
}

namespace {

using Rates = std::optional<Joints> FileSample::*;

Joints RatesOf(const FileTrajectory& trajectory, size_t sample, SpeedOfSample rate) {
  const FiniteDifferences differences(trajectory);
  Joints rates;
  for (size_t joint = 0; joint < rates.size(); ++joint) {
    rates[joint] = (differences.*rate)(sample, joint);
  }
  return rates;
}

void Fill(FileTrajectory& trajectory, Rates rates, SpeedOfSample rate) {
  for (size_t i = 0; i < trajectory.size(); ++i) {
    trajectory[i].*rates = RatesOf(trajectory, i, rate);
  }
}

void Drop(FileTrajectory& trajectory, Rates rates, SpeedOfSample rate) {
  for (size_t i = 0; i < trajectory.size(); ++i) {
    const std::optional<Joints>& given = trajectory[i].*rates;
    if (!given || *given != RatesOf(trajectory, i, rate)) return;
  }
  for (FileSample& sample : trajectory) (sample.*rates).reset();
}

}  // namespace

FileTrajectory WithRates(FileTrajectory trajectory, SpeedOfSample speed) {
  const SampleParts parts = PartsOf(trajectory);
  if (!parts.velocities) Fill(trajectory, &FileSample::velocities, speed);
  if (!parts.accelerations) {
    Fill(trajectory, &FileSample::accelerations, &FiniteDifferences::JointAcceleration);
  }
  return trajectory;
}

void DropDifferences(FileTrajectory& trajectory, SpeedOfSample speed) {
  Drop(trajectory, &FileSample::velocities, speed);
  Drop(trajectory, &FileSample::accelerations, &FiniteDifferences::JointAcceleration);
}

double MotorRpm(const Arm& arm, size_t joint, double speed_rad_s) {
  constexpr double kRpmPerRadS = 60 / (2 * closed_form::kPi);
  return speed_rad_s * arm.joints()[joint].gear_ratio.value * kRpmPerRadS;
}

}  // namespace qal::io
