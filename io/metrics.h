#ifndef QAL_IO_METRICS_H_
#define QAL_IO_METRICS_H_

#include <qal/model/arm.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "trajectory.h"

namespace qal::io {

/// What is measured on a trajectory, by place in kMetrics.
enum MetricIndex : size_t {
  kRepeatedTimes,
  kBackwardTimes,
  kJointSpeed,
  kJointAcceleration,
  kJointJerk,
  kSpeedError,
  kAccelerationError,
  kEndSpeed,
  kEndAcceleration,
  kBeyondRange,
  kMotorSpeed,
  kJointStep,
  kFirstStep,
  kLastStep,
  kOtherStep,
  kEndStep,
  kToolSpeed,
  kLineDeviation,
  kPositionError,
  kOrientationError,
  kMetricCount
};

struct MetricKind {
  const char* title;
  const char* unit;
  const char* key;     // in JSON
  const char* option;  // that sets its limit; null: there is none to set
  bool per_joint;      // one value a joint, or one for the trajectory
  const char* help;    // what it is, for the limit's option
};

extern const std::array<MetricKind, kMetricCount> kMetrics;

/// The largest magnitude of a metric, and the sample where it happens. Of what lies between two
/// samples that is the later one.
struct Peak {
  double value;
  size_t sample;
  int joint = -1;  ///< from 0, in a metric of the whole trajectory that is about one
};

/// One peak, or six; nothing where a metric has no value (no pose in the file, no positive
/// duration, no rates, no step but the first and the last).
using Peaks = std::vector<std::optional<Peak>>;

using Metrics = std::array<Peaks, kMetricCount>;

/// Measures a trajectory: the joints' rates by their velocities and accelerations, at the samples
/// and between them, as `MeasureByRates` says, or, where samples don't have both, by differences as
/// `FiniteDifferences` defines them; the tool by its pose, or, without one, by forward kinematics
/// of the joints. The times may be in any order; an interval without a positive duration has no
/// rates.
/// @param jerk_rad_s3 what a joint's jerk may be, if it isn't the arm's
/// @throw Failure "sample N: REASON" when the arm's solver gives no pose of the joints
Metrics Measure(const FileTrajectory& trajectory, const Arm& arm,
                const std::optional<Joints>& jerk_rad_s3 = {});

}  // namespace qal::io

#endif  // QAL_IO_METRICS_H_
