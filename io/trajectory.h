#ifndef QAL_IO_TRAJECTORY_H_
#define QAL_IO_TRAJECTORY_H_

#include <qal/plan/motion.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace qal::io {

/// One sample of a trajectory. Only time and joints are always there.
struct FileSample {
  double time_s;
  Joints joints;  ///< [rad]
  std::optional<Pose> pose = {};
  std::optional<Joints> velocities = {};     ///< [rad/s], the motion's own, not differences
  std::optional<Joints> accelerations = {};  ///< [rad/s^2], likewise
};

/// A trajectory as the files hold it, in the order of time.
using FileTrajectory = std::vector<FileSample>;

/// A trajectory read from a file, and the line that each sample begins on, counted from 1. JSON
/// gives no lines.
struct LocatedTrajectory {
  FileTrajectory samples;
  std::vector<size_t> lines;
  std::vector<std::string> notes = {};  ///< what the reader took upon itself, for the user to know
};

/// Where a sample stands: "sample 12 (line 14)", counted from sample 0 and line 1; without the line
/// where there is none.
std::string Place(const LocatedTrajectory& trajectory, size_t sample);

/// @throw UsageError "sample N: ..." where a time, joint, rate or coordinate is beyond
/// kLargestNumber
void ExpectMeasurable(const LocatedTrajectory& trajectory);

/// The states of a plan, one control cycle apart, the first at time 0. With a cycle of whole
/// milliseconds, sample i is at the double nearest i * cycle.
FileTrajectory FromStates(const std::vector<State>& states, double cycle_s);

/// A planned trajectory with all that it has.
FileTrajectory FromTrajectory(const Trajectory& trajectory);

/// What samples have beside time and joints.
struct SampleParts {
  bool pose = false;
  bool velocities = false;
  bool accelerations = false;
};

/// The sample of `values`: time, six joints, then, as far as they are there, x, y, z, qw, qx, qy,
/// qz, six velocities, six accelerations.
/// @throw UsageError when the quaternion is no orientation: all zeros
FileSample SampleOf(const double* values, const SampleParts& parts);

/// What every sample has; nothing for no samples.
SampleParts PartsOf(const FileTrajectory& trajectory);

/// Whether every sample has velocities and accelerations.
bool HaveRates(const FileTrajectory& trajectory);

}  // namespace qal::io

#endif  // QAL_IO_TRAJECTORY_H_
