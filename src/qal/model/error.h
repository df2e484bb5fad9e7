#ifndef QAL_MODEL_ERROR_H_
#define QAL_MODEL_ERROR_H_

/// @file
/// Why there is no answer: reasons, and their numbers.

#include <string>

#include "../../core/export.h"

namespace qal {

/// Why there is no answer. What an `Error`'s numbers mean is said at each.
enum class Reason {
  kNone,  ///< there is an answer

  // ---- The request ----
  kNotFinite,         ///< a number is NaN or infinite
  kNotAnOrientation,  ///< a quaternion of length `value`, too short to be a direction
  kSetting,  ///< a setting, named in `detail`, is `value`; `bound` is the nearest that works

  // ---- Solving ----
  kNoPose,        ///< the solver's forward kinematics gives no pose of these joints
  kOutOfReach,    ///< the solver finds no joints for the pose
  kJointRange,    ///< `joint` would stand at `value` [rad], its limit is at `bound` [rad]
  kStepBound,     ///< `joint` would move by `value` [rad], `bound` [rad] are allowed
  kSolverFault,   ///< the solver breaks its contract; `detail` says how
  kSolverThrows,  ///< the solver has thrown; `detail` is what it says

  // ---- Making an arm ----
  kLibraryNotLoaded,  ///< no library that can be loaded; `detail` is what the loader says
  kFunctionMissing,   ///< the library lacks a function, named in `detail`
  kNotSixJoints,      ///< the solver is for `value` joints, `bound` are expected
  kFreeParameters,    ///< the solver has `value` free parameters, none is expected
  kSolverType,        ///< the solver's kind of target is `value`, `bound` (a full pose) is expected
  kSingularEverywhere,  ///< the arm can't be solved: its tool lacks a way to move wherever it is
  kNoFamily,            ///< no family is near, whose nearest member is wanted
  kLimits,  ///< limits of `joint` are not limits; `detail` names them, `value` is at fault

  // ---- Moves ----
  kEndsApart,      ///< the ends are `value` [m] apart on an axis, `bound` [m] are allowed
  kEndsTurned,     ///< the ends' orientations are `value` [rad] apart, more than `bound` in a
                   ///< component
  kTooShort,       ///< a line of `value` [m]; the shortest that works is `bound` [m]
  kConfiguration,  ///< `joint` would jump by `value` [rad] to the end, `bound` [rad] are allowed
  kMotorSpeed,     ///< the motor of `joint` would need `value` [rpm], `bound` [rpm] are allowed
  kAccelerationTooLow,  ///< the acceleration is `value` [m/s^2]; it has to be above `bound`
  kTooManyPoints,       ///< the plan would have `value` points, `bound` at the most
  kEndRate,  ///< a rate of `joint` at an end of the move, named in `detail`, is `value`; `bound` is
             ///< allowed
  kSingularity,  ///< the path leads through a singularity, named in `detail`, where joints would
                 ///< have to turn at once; `value` is the smallest singular value of the Jacobian
  kNoArc,        ///< there is no such arc; `detail` says why

  // ---- The caller ----
  kInterrupted,  ///< the arm's watch said that it is to end (`Arm::Watched`)
};

/// A failure: the reason and its numbers. The text is made elsewhere, in the caller's units.
struct Error {
  Reason reason = Reason::kNone;  ///< what it is; says what the numbers mean
  int joint = -1;                 ///< from 0; -1: the reason is not one joint's
  double value = 0;               ///< what there is, or would be needed
  double bound = 0;               ///< what is allowed or expected
  std::string detail = {};        ///< a name, or what another program says; mostly empty
};

}  // namespace qal

#endif  // QAL_MODEL_ERROR_H_
