#ifndef QAL_MODEL_ARM_H_
#define QAL_MODEL_ARM_H_

/// @file
/// Arms: made from a description or a solver; their limits, cycle, base and tool.

#include <array>
#include <functional>
#include <memory>
#include <string>

#include "../../core/export.h"
#include "description.h"
#include "result.h"
#include "solver.h"

namespace qal {

/// A number of an arm, and where it comes from.
struct Setting {
  double value = 0;        ///< in the unit that the setting's name says
  bool described = false;  ///< false: nobody said it, it is assumed
};

/// What a joint may do.
struct JointModel {
  std::string name;             ///< the description's; "joint_1" to "joint_6" where it has none
  Setting lower_rad;            ///< -infinity for a joint that turns without end
  Setting upper_rad;            ///< infinity for a joint that turns without end
  Setting velocity_rad_s;       ///< highest speed, either way [rad/s]
  Setting acceleration_rad_s2;  ///< highest acceleration, either way [rad/s^2]
  Setting jerk_rad_s3;          ///< highest rate of the acceleration, either way [rad/s^3]
  Setting gear_ratio;           ///< motor turns per turn of the joint

  /// Motor speed at `velocity_rad_s` [rpm].
  QAL_API double motor_speed_rpm() const;
};

/// An arm: its solver, and what it may do. A value, cheap to copy; immutable.
///
/// What the settings say goes before what the description says, and at a joint before at its motor.
/// What nobody said is assumed: limits of 170 degrees; a velocity of 180 degrees/s; that velocity
/// reached in 0.25 s; that acceleration reached in 0.05 s; the gear ratio with which the velocity
/// is the motor's speed, 3000 rpm where that is not said either; a cycle of 0.005 s. A number that
/// follows from described ones counts as described.
class QAL_API Arm {
 public:
  /// An arm from its description, by `Solver::ClosedForm`. No compiler is needed.
  /// @param description six revolute joints
  /// @param settings    what goes before the description, and what it has no words for
  /// @return the arm; kSingularEverywhere; kLimits when a limit is no number, a lower one lies
  /// above
  ///         the upper one, or another number is not above 0; kSetting when the base or the tool
  ///         frame is no frame. `detail` names the number or the frame
  static Result<Arm> FromDescription(const ArmDescription& description,
                                     const ArmSettings& settings = {});
  /// An arm from a solver, anybody's `libik.so`.
  /// @param solver   knows the geometry
  /// @param settings limits, motors, cycle, frames
  /// @return the arm; kLimits, kSetting as above
  static Result<Arm> FromSolver(const Solver& solver, const ArmSettings& settings = {});
  /// The same, with the limits and the joints' names of a description. Its geometry is the
  /// solver's business and is not looked at.
  static Result<Arm> FromSolver(const Solver& solver, const ArmDescription& description,
                                const ArmSettings& settings);
  /// The reference arm: arms/reference.urdf with its motors.
  static Arm Reference();

  /// The same arm with another tool.
  /// @param tool the tool frame in the arm's tip frame
  /// @return kSetting when it is no frame
  Result<Arm> WithTool(const Transform& tool) const;

  /// The same arm, whose solver asks before each answer whether to go on. Once the function says
  /// no, the solver has no answers any more, and what works with the arm, a plan or an explanation
  /// that takes long, ends soon and without a result: mostly with kInterrupted.
  /// @param go_on called in whatever thread works, some 100,000 times a second; kept as long as
  ///              copies of the arm and motions planned with it live
  Arm Watched(std::function<bool()> go_on) const;

  /// What it is called.
  const std::string& name() const;
  /// What each joint may do, joint 1 first.
  const std::array<JointModel, 6>& joints() const;
  /// The control cycle [s]: how far samples of its motions are apart.
  Setting cycle_s() const;
  const Transform& base() const;  ///< the arm's base in the frame that poses are given in
  const Transform& tool() const;  ///< the tool frame in the arm's tip frame
  /// Its solver, of poses of the tip frame in the arm's own base.
  const Solver& solver() const;

  /// For this library's own layers: the solver with base and tool frame in place.
  const SolverFunctions& functions() const;

 private:
  struct Held;
  explicit Arm(std::shared_ptr<const Held> held) : held_(std::move(held)) {}
  std::shared_ptr<const Held> held_;
};

}  // namespace qal

#endif  // QAL_MODEL_ARM_H_
