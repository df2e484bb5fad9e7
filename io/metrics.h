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
};

/// One peak, or six; nothing where a metric has no value (no pose in the file, no positive
/// duration, no step but the first and the last).
using Peaks = std::vector<std::optional<Peak>>;

/// Measures a trajectory: rates as `FiniteDifferences` defines them, the tool by its pose, or,
/// without one, by forward kinematics of the joints. The times may be in any order; an interval
/// without a positive duration has no rates.
/// @throw Failure "sample N: REASON" when the arm's solver gives no pose of the joints
std::array<Peaks, kMetricCount> Measure(const FileTrajectory& trajectory, const Arm& arm);

/// A limit for each value of a metric; empty: none.
using Limits = std::array<std::vector<double>, kMetricCount>;

/// No limits but that no time may be repeated or go back.
Limits DefaultLimits();

struct Violation {
  MetricIndex metric;
  size_t entry;  // the joint, counted from 0; 0 for a metric of the whole trajectory
  double limit;
};

/// Where a peak is above its limit, or where there is a limit and nothing to measure.
std::vector<Violation> FindViolations(const std::array<Peaks, kMetricCount>& metrics,
                                      const Limits& limits);

}  // namespace qal::io

#endif  // QAL_IO_METRICS_H_
