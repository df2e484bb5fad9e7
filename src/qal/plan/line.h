#ifndef QAL_PLAN_LINE_H_
#define QAL_PLAN_LINE_H_

/// @file
/// Straight lines of the tool, the quickest within every limit of tool and joints.

#include <memory>
#include <vector>

#include "binding.h"
#include "motion.h"

namespace qal {

/// What a line may do at most. Each number is finite and above 0.
struct LineLimits {
  double speed_m_s = 0.25;              ///< of the tool centre point [m/s]
  double acceleration_m_s2 = 1;         ///< of the tool centre point [m/s^2]
  double jerk_m_s3 = 10;                ///< of the tool centre point [m/s^3]
  double turn_speed_rad_s = 1;          ///< of the tool's orientation [rad/s]
  double turn_acceleration_rad_s2 = 4;  ///< of the tool's orientation [rad/s^2]
  double turn_jerk_rad_s3 = 40;         ///< of the tool's orientation [rad/s^3]
  LimitScale scale = {};                ///< how much of the joints' own limits to use
  /// How far the orientation may be off the line to pass a wrist singularity without slowing down
  /// for it [rad], 0 to 0.5. 0: not at all. The tool's turn that this adds counts for no limit.
  double max_orientation_error_rad = 0;
};

/// A straight line of the tool, from rest to rest. A value, cheap to copy; immutable.
class QAL_API LineMotion {
 public:
  double duration_s() const;  ///< how long it takes
  double length_m() const;    ///< of the tool centre point's way
  double angle_rad() const;   ///< by which the tool turns, 0 to pi

  /// The largest angle between the orientation and the line's [rad]; 0 but for lines that needed
  /// `max_orientation_error_rad`.
  double orientation_error_rad() const;

  /// The joints at a time; before 0 those of the start, after the duration those of the end.
  MotionState At(double time_s) const;
  /// Where the tool is. On the line the joints have this pose but for 1e-9 m and 1e-9 rad.
  Pose PoseAt(double time_s) const;
  /// Both at once.
  Sample SampleAt(double time_s) const;
  /// How much of the line is behind, 0 to 1.
  double AlongAt(double time_s) const;

  /// The limits that the motion runs at, the longest first.
  std::vector<Binding> bindings() const;

  /// The same motion, slower throughout, so that it takes this long.
  /// @param duration_s not less than the motion's own; of less, the motion as it is
  LineMotion InDuration(double duration_s) const;

 private:
  struct Held;
  friend Result<LineMotion, PlanFailure> PlanLine(const Arm& arm, const State& from, const Pose& to,
                                                  const LineLimits& limits);
  explicit LineMotion(std::shared_ptr<const Held> held) : held_(std::move(held)) {}
  std::shared_ptr<const Held> held_;
};

/// Plans a straight line of the tool centre point, along which the tool turns about a fixed axis,
/// the shorter way, in proportion to the way; also a turn on the spot. The joints go on from those
/// of the start without a jump to another solution. The fastest motion is planned that keeps every
/// limit: of the tool, of its turn, and velocity, acceleration and jerk of each joint, as the arm
/// says, times `limits.scale`. Where a joint would be too fast the tool slows down.
///
/// Limits are looked at four times in each of the time law's pieces, which are some cycles long,
/// and so hold between samples to 1e-3 of themselves. Limits of jerk make the problem of the
/// fastest motion a non-convex one: it is solved locally, to some thousandths as a rule.
///
/// With `max_orientation_error_rad` a wrist singularity that the line passes within that angle is
/// passed with the wrist's joints going straight on, the wrist flipped beyond it, on the longest
/// stretch that keeps the error.
///
/// @param arm    the arm
/// @param from   the joints at the start [rad]. Its pose is not read: the line begins where they
///               have the tool
/// @param to     the pose at the end [base frame]; the quaternion needs not be of length 1
/// @param limits of the tool, and how much of the joints' own to use
/// @return the motion; of an end at the start, one of no duration. kNotFinite, kNotAnOrientation,
///         kSetting when a limit is not above 0, a scale not above 0 and up to 1, or an orientation
///         error not from 0 to 0.5; kOutOfReach; kJointRange, at the place where the joint leaves
///         its range, `value` being the farthest that it would go; kSingularity; kSolverFault,
///         kSolverThrows, kNoPose
QAL_API Result<LineMotion, PlanFailure> PlanLine(const Arm& arm, const State& from, const Pose& to,
                                                 const LineLimits& limits = {});

}  // namespace qal

#endif  // QAL_PLAN_LINE_H_
