#ifndef QAL_TOOLS_QAL_MEASURE_H_
#define QAL_TOOLS_QAL_MEASURE_H_

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "trajectory.h"

namespace qal::tools {

/// What is measured on a trajectory, by place in kFigures.
enum FigureIndex : size_t {
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
  kFigureCount
};

struct FigureKind {
  const char* title;
  const char* unit;
  const char* key;     // in JSON
  const char* option;  // that sets its limit; null: there is none to set
  bool per_joint;      // one value a joint, or one for the trajectory
  const char* help;    // what it is, for the limit's option
};

extern const std::array<FigureKind, kFigureCount> kFigures;

/// The largest magnitude of a figure, and the sample where it happens. Of what lies between two
/// samples that is the later one.
struct Peak {
  double value;
  size_t sample;
};

/// One peak, or six; nothing where a figure has no value (no pose in the file, no positive
/// duration, no step but the first and the last).
using Peaks = std::vector<std::optional<Peak>>;

/// Measures a trajectory: rates as `Differences` defines them, the tool by its pose, or, without
/// one, by forward kinematics of the joints. The times may be in any order; an interval without a
/// positive duration has no rates.
/// @throw Failure when the solver gives no pose of a sample's joints
std::array<Peaks, kFigureCount> Measure(const Trajectory& trajectory);

/// A limit for each value of a figure; empty: none.
using Limits = std::array<std::vector<double>, kFigureCount>;

/// No limits but that no time may be repeated or go back.
Limits DefaultLimits();

struct Violation {
  FigureIndex figure;
  size_t entry;  // the joint, counted from 0; 0 for a figure of the whole trajectory
  double limit;
};

/// Where a peak is above its limit, or where there is a limit and nothing to measure.
std::vector<Violation> FindViolations(const std::array<Peaks, kFigureCount>& figures,
                                      const Limits& limits);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_MEASURE_H_
