#ifndef QAL_IO_FINITE_DIFFERENCES_H_
#define QAL_IO_FINITE_DIFFERENCES_H_

#include <qal/model/arm.h>

#include <cstddef>

#include "trajectory.h"

namespace qal::io {

/// Rates of a trajectory, from the differences of its samples.
///
/// A trajectory runs from rest to rest: the arm stands at the first sample before it starts, and
/// stays at the last one. So a first or last step that is too large shows as an acceleration.
///
/// Interval i ends at sample i: 1 to size - 1 lie between samples; 0 is the standstill before the
/// first sample and `size` the one after the last, each as long as its neighbour. Speeds and jerks
/// belong to an interval, accelerations to a sample. An interval without a positive duration has no
/// speed: NaN, as is what depends on it.
class FiniteDifferences {
 public:
  /// @param trajectory at least one sample; has to outlive this
  explicit FiniteDifferences(const FileTrajectory& trajectory) : trajectory_(trajectory) {}

  /// Length of interval 0 to size [s]; a second when there is but one sample, where nothing moves.
  double Duration(size_t interval) const;

  /// Mean speed over interval 0 to size [rad/s], signed. For the sample that ends the interval this
  /// is the backward difference.
  double JointSpeed(size_t interval, size_t joint) const;

  /// Speed at sample 0 to size - 1 itself [rad/s]: that of the parabola through the sample and its
  /// neighbours, 0 at the first sample and the last.
  double JointSpeedAt(size_t sample, size_t joint) const;

  /// Change of speed at sample 0 to size - 1 [rad/s^2]: from the interval before to the one after,
  /// over the time between their middles.
  double JointAcceleration(size_t sample, size_t joint) const;

  /// Change of acceleration over interval 0 to size [rad/s^3].
  double JointJerk(size_t interval, size_t joint) const;

 private:
  const FileTrajectory& trajectory_;
};

/// Which speed of a sample a file format holds: JointSpeed or JointSpeedAt.
using SpeedOfSample = double (FiniteDifferences::*)(size_t sample, size_t joint) const;

/// The trajectory with velocities and accelerations: differences where not every sample has its
/// own.
FileTrajectory WithRates(FileTrajectory trajectory, SpeedOfSample speed);

/// The trajectory without the rates that `WithRates` has put there: those that are its differences
/// to the last bit. What they say, the joints say as well.
void DropDifferences(FileTrajectory& trajectory, SpeedOfSample speed);

/// Speed of a joint's motor [rpm, signed] when the joint turns at `speed_rad_s`, by the arm's gear
/// ratio. The classic operations hold one rpm at the six digits 0.104719 rad/s, which is 7
/// millionths less than it is.
/// @param joint from 0
double MotorRpm(const Arm& arm, size_t joint, double speed_rad_s);

}  // namespace qal::io

#endif  // QAL_IO_FINITE_DIFFERENCES_H_
