#ifndef QAL_IO_JOINT_METRICS_H_
#define QAL_IO_JOINT_METRICS_H_

#include "metrics.h"

namespace qal::io {

/// Keeps the larger of a peak and a magnitude. A NaN is none that could be compared: it counts as
/// beyond every limit.
void Raise(std::optional<Peak>& peak, double value, size_t sample, int joint = -1);

/// Rates from the differences of the joints, as `FiniteDifferences` defines them.
void MeasureByDifferences(const FileTrajectory& trajectory, const Arm& arm, Metrics& metrics);

/// Rates from samples that have velocities and accelerations: at the samples and between them.
///
/// Between two samples a joint follows the quintic through both. A quintic through samples of a
/// motion whose jerk changes between them overshoots by a little; that much is taken off, so that
/// nothing is said to be exceeded that need not be. The jerk is the change of acceleration over the
/// time: the motion's own is at least that.
/// @param jerk_rad_s3 what a joint's jerk may be
void MeasureByRates(const FileTrajectory& trajectory, const Arm& arm, const Joints& jerk_rad_s3,
                    Metrics& metrics);

/// How far velocities are from what the joints say, accelerations from what the velocities say, and
/// both from rest at the ends; as far as the samples have them.
void MeasureAgreement(const FileTrajectory& trajectory, const Joints& jerk_rad_s3,
                      Metrics& metrics);

}  // namespace qal::io

#endif  // QAL_IO_JOINT_METRICS_H_
