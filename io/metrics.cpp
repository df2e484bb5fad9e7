#include "metrics.h"

#include <fmt/format.h>
#include <qal/model/rotations.h>
#include <qal/solve/kinematics.h>

#include <algorithm>
#include <cmath>

#include "error.h"
#include "error_text.h"
#include "finite_differences.h"
#include "joint_metrics.h"

namespace qal::io {

const std::array<MetricKind, kMetricCount> kMetrics = {{
    {"repeated times", "samples", "repeated_times", nullptr, false, ""},
    {"backward times", "samples", "backward_times", nullptr, false, ""},
    {"joint speed", "rad/s", "joint_speed_rad_s", "--max-joint-speed", true, "speed of a joint"},
    {"joint acceleration", "rad/s^2", "joint_acceleration_rad_s2", "--max-joint-acc", true,
     "acceleration of a joint"},
    {"joint jerk", "rad/s^3", "joint_jerk_rad_s3", "--max-joint-jerk", true, "jerk of a joint"},
    {"speed error", "rad/s", "speed_error_rad_s", "--max-speed-error", false,
     "difference between the file's speeds and those of its joints"},
    {"acceleration error", "rad/s^2", "acceleration_error_rad_s2", "--max-acc-error", false,
     "difference between the file's accelerations and those of its speeds"},
    {"end speed", "rad/s", "end_speed_rad_s", "--max-end-speed", false,
     "the file's speed of a joint at the first sample and the last"},
    {"end acceleration", "rad/s^2", "end_acceleration_rad_s2", "--max-end-acc", false,
     "the file's acceleration of a joint at the first sample and the last"},
    {"beyond range", "rad", "beyond_range_rad", "--max-beyond-range", true,
     "distance of a joint from its range"},
    {"motor speed", "rpm", "motor_speed_rpm", "--max-motor-rpm", true,
     "speed of a joint's motor, by its gear ratio"},
    {"joint step", "rad", "joint_step_rad", "--max-joint-step", true,
     "move of a joint between two samples"},
    {"first step", "rad", "first_step_rad", nullptr, false, ""},
    {"last step", "rad", "last_step_rad", nullptr, false, ""},
    {"largest other step", "rad", "largest_other_step_rad", nullptr, false, ""},
    {"end step", "times", "end_step_ratio", "--max-end-step", false,
     "first or last step over the largest other one, each by its leading joint"},
    {"tool speed", "m/s", "tool_speed_m_s", "--max-tool-speed", false, "speed of the tool centre"},
    {"line deviation", "m", "line_deviation_m", "--max-deviation", false,
     "distance of the tool centre from the straight line between its first and last position"},
    {"position error", "m", "position_error_m", "--max-position-error", false,
     "distance of the file's position from that of the joints"},
    {"orientation error", "rad", "orientation_error_rad", "--max-orientation-error", false,
     "angle between the file's orientation and that of the joints"},
}};

namespace {

void MeasureTimes(const FileTrajectory& trajectory, Metrics& metrics) {
  const FiniteDifferences differences(trajectory);
  for (const MetricIndex metric : {kRepeatedTimes, kBackwardTimes}) {
    Peak count{0.0, 0};
    for (size_t i = 1; i < trajectory.size(); ++i) {
      const double duration = differences.Duration(i);
      if (metric == kRepeatedTimes ? duration != 0.0 : duration >= 0.0) continue;
      if (count.value == 0.0) count.sample = i;
      ++count.value;
    }
    metrics[metric][0] = count;
  }
}

void MeasureRange(const FileTrajectory& trajectory, const Arm& arm, Metrics& metrics) {
  for (size_t i = 0; i < trajectory.size(); ++i) {
    for (size_t joint = 0; joint < 6; ++joint) {
      const double at = trajectory[i].joints[joint];
      const JointModel& model = arm.joints()[joint];
      const double beyond = std::max(at - model.upper_rad.value, model.lower_rad.value - at);
      Raise(metrics[kBeyondRange][joint], std::max(beyond, 0.0), i);
    }
  }
}

void MeasureSteps(const FileTrajectory& trajectory, Metrics& metrics) {
  const size_t last = trajectory.size() - 1;
  for (size_t i = 1; i <= last; ++i) {
    double leading = 0.0;
    for (size_t joint = 0; joint < 6; ++joint) {
      const double step = std::fabs(trajectory[i].joints[joint] - trajectory[i - 1].joints[joint]);
      Raise(metrics[kJointStep][joint], step, i);
      leading = std::max(leading, step);
    }
    if (i == 1) Raise(metrics[kFirstStep][0], leading, i);
    if (i == last) Raise(metrics[kLastStep][0], leading, i);
    if (i > 1 && i < last) Raise(metrics[kOtherStep][0], leading, i);
  }
  if (const auto other = metrics[kOtherStep][0]) {
    for (const MetricIndex metric : {kFirstStep, kLastStep}) {
      const Peak& end = *metrics[metric][0];
      if (end.value == 0.0 && other->value == 0.0) continue;  // no joint moves at all: no ratio
      Raise(metrics[kEndStep][0], end.value / other->value, end.sample);
    }
  }
}

double DistanceFromLine(const Vec3& point, const Vec3& from, const Vec3& to) {
  const Vec3 line = {to.x - from.x, to.y - from.y, to.z - from.z};
  const Vec3 out = {point.x - from.x, point.y - from.y, point.z - from.z};
  const double square = line.x * line.x + line.y * line.y + line.z * line.z;
  // Of a line without a length, only the start counts.
  const double along =
      square > 0.0 ? (out.x * line.x + out.y * line.y + out.z * line.z) / square : 0.0;
  const double within = std::clamp(along, 0.0, 1.0);
  return Distance(out, {within * line.x, within * line.y, within * line.z});
}

Pose PoseOfJoints(const Arm& arm, const FileTrajectory& trajectory, size_t sample) {
  const Result<Pose> pose = Forward(arm, trajectory[sample].joints);
  if (pose) return *pose;
  throw Failure(fmt::format("sample {}: {}", sample, ErrorText(pose.error())));
}

void MeasureTool(const FileTrajectory& trajectory, const Arm& arm, Metrics& metrics) {
  const auto position_at = [&](size_t sample) {
    const auto& pose = trajectory[sample].pose;
    return pose ? pose->position : PoseOfJoints(arm, trajectory, sample).position;
  };
  const FiniteDifferences rates(trajectory);
  const Vec3 from = position_at(0);
  const Vec3 to = position_at(trajectory.size() - 1);
  Vec3 before = from;
  for (size_t i = 0; i < trajectory.size(); ++i) {
    const Pose by_joints = PoseOfJoints(arm, trajectory, i);
    const auto& pose = trajectory[i].pose;
    const Vec3 position = pose ? pose->position : by_joints.position;
    const double duration = rates.Duration(i);
    if (duration > 0.0) Raise(metrics[kToolSpeed][0], Distance(before, position) / duration, i);
    before = position;
    Raise(metrics[kLineDeviation][0], DistanceFromLine(position, from, to), i);
    if (!pose) continue;
    Raise(metrics[kPositionError][0], Distance(position, by_joints.position), i);
    Raise(metrics[kOrientationError][0], AngleBetween(pose->orientation, by_joints.orientation), i);
  }
}

}  // namespace

Metrics Measure(const FileTrajectory& trajectory, const Arm& arm,
                const std::optional<Joints>& jerk_rad_s3) {
  Joints jerk;
  std::transform(arm.joints().begin(), arm.joints().end(), jerk.begin(),
                 [](const JointModel& joint) { return joint.jerk_rad_s3.value; });
  jerk = jerk_rad_s3.value_or(jerk);
  Metrics metrics;
  for (size_t i = 0; i < kMetricCount; ++i) metrics[i].resize(kMetrics[i].per_joint ? 6 : 1);
  MeasureTimes(trajectory, metrics);
  if (HaveRates(trajectory)) {
    MeasureByRates(trajectory, arm, jerk, metrics);
  } else {
    MeasureByDifferences(trajectory, arm, metrics);
  }
  MeasureAgreement(trajectory, jerk, metrics);
  MeasureRange(trajectory, arm, metrics);
  MeasureSteps(trajectory, metrics);
  MeasureTool(trajectory, arm, metrics);
  return metrics;
}

}  // namespace qal::io
