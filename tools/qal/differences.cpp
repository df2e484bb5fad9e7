#include "differences.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qal::tools {

double Differences::Duration(size_t interval) const {
  if (trajectory_.size() < 2) return kCycleS;
  const size_t end = std::clamp<size_t>(interval, 1, trajectory_.size() - 1);
  return trajectory_[end].time_s - trajectory_[end - 1].time_s;
}

double Differences::JointSpeed(size_t interval, size_t joint) const {
  const double duration = Duration(interval);
  if (!(duration > 0.0)) return std::numeric_limits<double>::quiet_NaN();
  if (interval == 0 || interval == trajectory_.size()) return 0.0;
  const double from = trajectory_[interval - 1].joints_rad[joint];
  return (trajectory_[interval].joints_rad[joint] - from) / duration;
}

double Differences::JointSpeedAt(size_t sample, size_t joint) const {
  if (sample == 0 || sample + 1 == trajectory_.size()) return 0.0;
  const double before = Duration(sample);
  const double after = Duration(sample + 1);
  return (JointSpeed(sample, joint) * after + JointSpeed(sample + 1, joint) * before) /
         (before + after);
}

double Differences::JointAcceleration(size_t sample, size_t joint) const {
  const double change = JointSpeed(sample + 1, joint) - JointSpeed(sample, joint);
  return change / ((Duration(sample) + Duration(sample + 1)) / 2.0);
}

double Differences::JointJerk(size_t interval, size_t joint) const {
  const double before = interval == 0 ? 0.0 : JointAcceleration(interval - 1, joint);
  const double after = interval == trajectory_.size() ? 0.0 : JointAcceleration(interval, joint);
  return (after - before) / Duration(interval);
}

double MotorRpm(double joint_speed, size_t joint) {
  constexpr double kShaftRadPerSPerRpm = kShaftRadPerRpmTick * kReferenceNumbers.ticks_per_cycle / kCycleS;
  return joint_speed * kReferenceNumbers.gear_ratio[joint] / kShaftRadPerSPerRpm;
}

double Distance(const Pos& from, const Pos& to) {
  const Pos step = to - from;
  return std::hypot(step.x, step.y, step.z);
}

}  // namespace qal::tools
