#include "measure.h"

#include <algorithm>
#include <cmath>

#include "agreement.h"
#include "differences.h"

namespace qal::tools {

const std::array<FigureKind, kFigureCount> kFigures = {{
    {"repeated times", "samples", "repeated_times", nullptr, false, ""},
    {"backward times", "samples", "backward_times", nullptr, false, ""},
    {"joint speed", "rad/s", "joint_speed_rad_s", "--max-joint-speed", true, "speed of a joint"},
    {"joint acceleration", "rad/s^2", "joint_acceleration_rad_s2", "--max-joint-acc", true,
     "acceleration of a joint"},
    {"joint jerk", "rad/s^3", "joint_jerk_rad_s3", "--max-joint-jerk", true, "jerk of a joint"},
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

// A peak of NaN or less than the one before is none: an interval without a duration has no rates.
void Raise(std::optional<Peak>& peak, double value, size_t sample) {
  const double magnitude = std::fabs(value);
  if (peak ? magnitude > peak->value : !std::isnan(magnitude)) peak = Peak{magnitude, sample};
}

using Figures = std::array<Peaks, kFigureCount>;

void MeasureTimes(const Trajectory& trajectory, Figures& figures) {
  const Differences differences(trajectory);
  for (const FigureIndex figure : {kRepeatedTimes, kBackwardTimes}) {
    Peak count{0.0, 0};
    for (size_t i = 1; i < trajectory.size(); ++i) {
      const double duration = differences.Duration(i);
      if (figure == kRepeatedTimes ? duration != 0.0 : duration >= 0.0) continue;
      if (count.value == 0.0) count.sample = i;
      ++count.value;
    }
    figures[figure][0] = count;
  }
}

void MeasureJoints(const Trajectory& trajectory, Figures& figures) {
  const Differences rates(trajectory);
  for (size_t interval = 0; interval <= trajectory.size(); ++interval) {
    const size_t sample = std::min(interval, trajectory.size() - 1);
    for (size_t joint = 0; joint < 6; ++joint) {
      const double speed = rates.JointSpeed(interval, joint);
      Raise(figures[kJointSpeed][joint], speed, sample);
      Raise(figures[kMotorSpeed][joint], MotorRpm(speed, joint), sample);
      Raise(figures[kJointJerk][joint], rates.JointJerk(interval, joint), sample);
      if (interval == trajectory.size()) continue;
      Raise(figures[kJointAcceleration][joint], rates.JointAcceleration(interval, joint), interval);
    }
  }
}

void MeasureSteps(const Trajectory& trajectory, Figures& figures) {
  const size_t last = trajectory.size() - 1;
  for (size_t i = 1; i <= last; ++i) {
    double leading = 0.0;
    for (size_t joint = 0; joint < 6; ++joint) {
      const double step =
          std::fabs(trajectory[i].joints_rad[joint] - trajectory[i - 1].joints_rad[joint]);
      Raise(figures[kJointStep][joint], step, i);
      leading = std::max(leading, step);
    }
    if (i == 1) Raise(figures[kFirstStep][0], leading, i);
    if (i == last) Raise(figures[kLastStep][0], leading, i);
    if (i > 1 && i < last) Raise(figures[kOtherStep][0], leading, i);
  }
  if (const auto other = figures[kOtherStep][0]) {
    // 0 / 0, when no joint moves at all, is no ratio.
    for (const FigureIndex end : {kFirstStep, kLastStep}) {
      Raise(figures[kEndStep][0], figures[end][0]->value / other->value, figures[end][0]->sample);
    }
  }
}

double DistanceFromLine(const Pos& point, const Pos& from, const Pos& to) {
  const Pos line = to - from;
  const Pos out = point - from;
  const double square = line.x * line.x + line.y * line.y + line.z * line.z;
  // Of a line without a length, only the start counts.
  const double along =
      square > 0.0 ? (out.x * line.x + out.y * line.y + out.z * line.z) / square : 0.0;
  const double within = std::clamp(along, 0.0, 1.0);
  return Distance(out, {within * line.x, within * line.y, within * line.z});
}

void MeasureTool(const Trajectory& trajectory, Figures& figures) {
  const auto position_at = [&trajectory](size_t sample) {
    const auto& pose = trajectory[sample].pose;
    return pose ? pose->position : PointAt(trajectory, sample).position;
  };
  const Differences rates(trajectory);
  const Pos from = position_at(0);
  const Pos to = position_at(trajectory.size() - 1);
  Pos before = from;
  for (size_t i = 0; i < trajectory.size(); ++i) {
    const RoadPoint by_joints = PointAt(trajectory, i);
    const auto& pose = trajectory[i].pose;
    const Pos position = pose ? pose->position : by_joints.position;
    const double duration = rates.Duration(i);
    if (duration > 0.0) Raise(figures[kToolSpeed][0], Distance(before, position) / duration, i);
    before = position;
    Raise(figures[kLineDeviation][0], DistanceFromLine(position, from, to), i);
    if (!pose) continue;
    Raise(figures[kPositionError][0], Distance(position, by_joints.position), i);
    Raise(figures[kOrientationError][0], AngleBetween(pose->orientation, by_joints.orientation), i);
  }
}

}  // namespace

std::array<Peaks, kFigureCount> Measure(const Trajectory& trajectory) {
  Figures figures;
  for (size_t i = 0; i < kFigureCount; ++i) figures[i].resize(kFigures[i].per_joint ? 6 : 1);
  MeasureTimes(trajectory, figures);
  MeasureJoints(trajectory, figures);
  MeasureSteps(trajectory, figures);
  MeasureTool(trajectory, figures);
  return figures;
}

Limits DefaultLimits() {
  Limits limits;
  limits[kRepeatedTimes] = {0.0};
  limits[kBackwardTimes] = {0.0};
  return limits;
}

std::vector<Violation> FindViolations(const Figures& figures, const Limits& limits) {
  // Separates a real excess from the rounding of angles and times in a plan that goes up to its
  // limit exactly: a difference of theirs loses up to six digits, a jerk more.
  constexpr double kSlack = 1.0 + 1e-9;
  std::vector<Violation> violations;
  for (size_t i = 0; i < kFigureCount; ++i) {
    for (size_t entry = 0; entry < limits[i].size(); ++entry) {
      const std::optional<Peak>& peak = figures[i][entry];
      if (peak && peak->value <= limits[i][entry] * kSlack) continue;
      violations.push_back({static_cast<FigureIndex>(i), entry, limits[i][entry]});
    }
  }
  return violations;
}

}  // namespace qal::tools
