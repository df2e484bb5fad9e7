#include "motion_series.h"

#include <fmt/format.h>
#include <qal/model/rotations.h>
#include <qal/solve/kinematics.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "error.h"
#include "error_text.h"
#include "finite_differences.h"

namespace qal::io {

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

double FiniteOrNone(double value) { return std::isfinite(value) ? value : kNone; }

template <typename Rate>
Joints OfJoints(Rate rate) {
  Joints values;
  for (size_t joint = 0; joint < values.size(); ++joint) values[joint] = FiniteOrNone(rate(joint));
  return values;
}

void AddDifferences(const FileTrajectory& trajectory, size_t i, MotionSeries& series) {
  const FiniteDifferences rates(trajectory);
  const bool last = i + 1 == trajectory.size();
  series.velocities.push_back(OfJoints([&](size_t j) { return rates.JointSpeed(i, j); }));
  series.accelerations.push_back(OfJoints([&](size_t j) { return rates.JointAcceleration(i, j); }));
  series.jerks.push_back(OfJoints([&](size_t j) {
    const double before = rates.JointJerk(i, j);
    const double after = last ? rates.JointJerk(i + 1, j) : 0;
    return std::fabs(after) > std::fabs(before) ? after : before;
  }));
}

void AddOwnRates(const FileTrajectory& trajectory, size_t i, MotionSeries& series) {
  const Joints& accelerations = *trajectory[i].accelerations;
  series.velocities.push_back(*trajectory[i].velocities);
  series.accelerations.push_back(accelerations);
  series.jerks.push_back(OfJoints([&](size_t j) {
    if (i == 0) return 0.0;
    const double duration_s = FiniteDifferences(trajectory).Duration(i);
    if (!(duration_s > 0)) return kNone;
    return (accelerations[j] - (*trajectory[i - 1].accelerations)[j]) / duration_s;
  }));
}

double LimitMargin(const Arm& arm, const Joints& joints) {
  double margin = std::numeric_limits<double>::infinity();
  for (size_t j = 0; j < joints.size(); ++j) {
    const JointModel& model = arm.joints()[j];
    margin =
        std::min({margin, joints[j] - model.lower_rad.value, model.upper_rad.value - joints[j]});
  }
  return margin;
}

// The speed of a point fixed to the flange, wherever on it the sample's tool is.
double SpeedByJacobian(const Arm& arm, const FileSample& sample, const Pose& arm_pose,
                       const Vec3& position) {
  const Result<JacobianMatrix> jacobian = Jacobian(arm, sample.joints);
  if (!jacobian) return kNone;
  double twist[6] = {};
  for (size_t row = 0; row < 6; ++row) {
    for (size_t j = 0; j < 6; ++j) {
      twist[row] += jacobian->element[row][j] * (*sample.velocities)[j];
    }
  }
  const Vec3 off = {position.x - arm_pose.position.x, position.y - arm_pose.position.y,
                    position.z - arm_pose.position.z};
  return FiniteOrNone(std::hypot(twist[0] + twist[4] * off.z - twist[5] * off.y,
                                 twist[1] + twist[5] * off.x - twist[3] * off.z,
                                 twist[2] + twist[3] * off.y - twist[4] * off.x));
}

void AddTool(const Arm& arm, const FileTrajectory& trajectory, size_t i, MotionSeries& series) {
  const FileSample& sample = trajectory[i];
  const Result<Pose> by_joints = Forward(arm, sample.joints);
  if (!by_joints) throw Failure(fmt::format("sample {}: {}", i, ErrorText(by_joints.error())));
  const Pose pose = sample.pose.value_or(*by_joints);
  if (series.own_rates) {
    series.tool_speed_m_s.push_back(SpeedByJacobian(arm, sample, *by_joints, pose.position));
  } else {
    const double way_m = i == 0 ? 0 : Distance(series.poses.back().position, pose.position);
    const double duration_s = FiniteDifferences(trajectory).Duration(i);
    series.tool_speed_m_s.push_back(duration_s > 0 ? way_m / duration_s : kNone);
  }
  series.poses.push_back(pose);
  const Result<Singularities> distances = DistanceToSingularities(arm, sample.joints);
  series.singular_value.push_back(distances ? FiniteOrNone(distances->smallest_singular_value)
                                            : kNone);
}

}  // namespace

MotionSeries SeriesOf(const Arm& arm, const FileTrajectory& trajectory,
                      const std::function<void(size_t done)>& progress) {
  constexpr size_t kProgressSamples = 4096;
  MotionSeries series;
  series.own_rates = HaveRates(trajectory);
  for (size_t i = 0; i < trajectory.size(); ++i) {
    if (progress && i % kProgressSamples == 0) progress(i);
    series.time_s.push_back(trajectory[i].time_s);
    series.joints.push_back(trajectory[i].joints);
    series.limit_margin_rad.push_back(LimitMargin(arm, trajectory[i].joints));
    (series.own_rates ? AddOwnRates : AddDifferences)(trajectory, i, series);
    AddTool(arm, trajectory, i, series);
  }
  return series;
}

}  // namespace qal::io
