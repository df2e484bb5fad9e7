#ifndef QAL_IO_MOTION_SERIES_H_
#define QAL_IO_MOTION_SERIES_H_

#include <qal/model/arm.h>

#include <functional>
#include <vector>

#include "trajectory.h"

namespace qal::io {

/// What a trajectory is at each of its samples, to be drawn. NaN is where there is no value: of an
/// interval without a positive duration, or where the arm's solver gives none.
struct MotionSeries {
  bool own_rates = false;  ///< velocities and accelerations are the samples' own
  std::vector<double> time_s;
  std::vector<Joints> joints;         ///< [rad]
  std::vector<Joints> velocities;     ///< [rad/s]
  std::vector<Joints> accelerations;  ///< [rad/s^2]
  std::vector<Joints> jerks;          ///< [rad/s^3]
  std::vector<Pose> poses;
  std::vector<double> tool_speed_m_s;
  std::vector<double> limit_margin_rad;  ///< least distance of a joint from an end of its range,
                                         ///< negative outside; infinity: no joint has an end
  std::vector<double> singular_value;    ///< smallest of the Jacobian in metres and radians
};

/// The values that `Measure` takes the peaks of, as far as they are of samples.
///
/// With velocities and accelerations in every sample, they are these; the jerk is the change of
/// acceleration since the sample before, 0 at the first; the tool's speed is the Jacobian times the
/// velocities. Otherwise `FiniteDifferences` defines the rates: speeds and jerks of the interval
/// that ends at a sample, at the last sample the larger of the jerks before and after it; the
/// tool's speed is the mean one since the sample before. Poses are the samples' or those of the
/// joints.
/// @param progress is told how many samples are done, now and then
/// @throw Failure "sample N: REASON" when the arm's solver gives no pose of the joints
MotionSeries SeriesOf(const Arm& arm, const FileTrajectory& trajectory,
                      const std::function<void(size_t done)>& progress = {});

}  // namespace qal::io

#endif  // QAL_IO_MOTION_SERIES_H_
