#include "errors.h"

#include <fmt/format.h>

#include "../../io/error.h"
#include "../../io/error_text.h"
#include "../../io/plan_text.h"
#include "arrays.h"
#include "poses.h"

namespace qal::python {

namespace {

struct Named {
  Reason reason;
  const char* name;
  const char* exception;
};

constexpr Named kReasons[] = {
    {Reason::kNone, "none", "QalError"},
    {Reason::kNotFinite, "not_finite", "RequestError"},
    {Reason::kNotAnOrientation, "not_an_orientation", "RequestError"},
    {Reason::kSetting, "setting", "RequestError"},
    {Reason::kNoPose, "no_pose", "SolverError"},
    {Reason::kOutOfReach, "out_of_reach", "OutOfReachError"},
    {Reason::kJointRange, "joint_range", "JointRangeError"},
    {Reason::kStepBound, "step_bound", "StepBoundError"},
    {Reason::kSolverFault, "solver_fault", "SolverError"},
    {Reason::kSolverThrows, "solver_throws", "SolverError"},
    {Reason::kLibraryNotLoaded, "library_not_loaded", "ArmError"},
    {Reason::kFunctionMissing, "function_missing", "ArmError"},
    {Reason::kNotSixJoints, "not_six_joints", "ArmError"},
    {Reason::kFreeParameters, "free_parameters", "ArmError"},
    {Reason::kSolverType, "solver_type", "ArmError"},
    {Reason::kSingularEverywhere, "singular_everywhere", "ArmError"},
    {Reason::kNoFamily, "no_family", "ArmError"},
    {Reason::kLimits, "limits", "ArmError"},
    {Reason::kEndsApart, "ends_apart", "RequestError"},
    {Reason::kEndsTurned, "ends_turned", "RequestError"},
    {Reason::kTooShort, "too_short", "RequestError"},
    {Reason::kConfiguration, "configuration", "StepBoundError"},
    {Reason::kMotorSpeed, "motor_speed", "LimitError"},
    {Reason::kAccelerationTooLow, "acceleration_too_low", "LimitError"},
    {Reason::kTooManyPoints, "too_many_points", "RequestError"},
    {Reason::kEndRate, "end_rate", "LimitError"},
    {Reason::kSingularity, "singularity", "SingularityError"},
    {Reason::kNoArc, "no_arc", "RequestError"},
    {Reason::kInterrupted, "interrupted", "QalError"},
};

const Named& NamedOf(Reason reason) {
  for (const Named& named : kReasons) {
    if (named.reason == reason) return named;
  }
  return kReasons[0];
}

py::object ExceptionOf(const Error& error, const std::string& text) {
  const Named& named = NamedOf(error.reason);
  py::object exception = py::module_::import("qal_kinematics.errors").attr(named.exception)(text);
  exception.attr("reason") = named.name;
  exception.attr("joint") = error.joint < 0 ? py::object(py::none()) : py::int_(error.joint + 1);
  exception.attr("value") = error.value;
  exception.attr("bound") = error.bound;
  exception.attr("detail") = error.detail;
  return exception;
}

[[noreturn]] void RaiseObject(const py::object& exception) {
  PyErr_SetObject(py::type::of(exception).ptr(), exception.ptr());
  throw py::error_already_set();
}

}  // namespace

const char* ReasonName(Reason reason) { return NamedOf(reason).name; }

void Raise(const Error& error, const std::string& before) {
  RaiseObject(ExceptionOf(error, before + io::ErrorText(error)));
}

void Raise(const PlanFailure& failure, const std::string& path, const std::string& before) {
  py::object exception = ExceptionOf(failure.error, before + io::PlanFailureText(failure, path));
  exception.attr("along") = failure.along;
  exception.attr("before_joints") = ToArray(failure.before.joints);
  exception.attr("before_pose") = Poses(failure.before.pose);
  RaiseObject(exception);
}

void RaiseUnsolved(const Pose& pose, const Error& error) {
  const auto& [p, q] = pose;
  const bool refused = error.reason == Reason::kJointRange || error.reason == Reason::kStepBound;
  Raise(error,
        fmt::format("no solution at {:.6g} {:.6g} {:.6g} m (orientation {:.6g} {:.6g} {:.6g} "
                    "{:.6g}): {}",
                    p.x, p.y, p.z, q.w, q.x, q.y, q.z,
                    refused ? "none of its solutions is admissible; the nearest: " : ""));
}

void AddErrors(py::module_& module) {
  // Of files and their contents.
  py::register_exception_translator([](std::exception_ptr thrown) {
    try {
      if (thrown) std::rethrow_exception(thrown);
    } catch (const io::UsageError& error) {
      const py::object exception =
          py::module_::import("qal_kinematics.errors").attr("FileError")(error.what());
      PyErr_SetObject(py::type::of(exception).ptr(), exception.ptr());
    } catch (const io::Failure& failure) {
      const py::object exception =
          py::module_::import("qal_kinematics.errors").attr("QalError")(failure.what());
      PyErr_SetObject(py::type::of(exception).ptr(), exception.ptr());
    }
  });
  py::list names;
  for (const Named& named : kReasons) names.append(named.name);
  module.attr("REASONS") = py::tuple(names);
}

}  // namespace qal::python
