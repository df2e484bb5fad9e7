#ifndef QAL_PYTHON_ERRORS_H_
#define QAL_PYTHON_ERRORS_H_

#include <pybind11/pybind11.h>
#include <qal/plan/motion.h>

#include <string>

// Failures as Python's exceptions.
namespace qal::python {

namespace py = pybind11;

/// "joint_range", the name of a reason for programs.
const char* ReasonName(Reason reason);

/// Raises the exception of a failure: its text as the tools print it, its numbers as attributes.
/// @param before what stands before the text
[[noreturn]] void Raise(const Error& error, const std::string& before = "");

/// The same of a failure to plan, with where and the state before.
/// @param path what is planned: "line" or "move"
[[noreturn]] void Raise(const PlanFailure& failure, const std::string& path,
                        const std::string& before = "");

/// The same of a pose without solution, as `qal ik` says it.
[[noreturn]] void RaiseUnsolved(const Pose& pose, const Error& error);

/// The value, or the exception.
template <class T>
T OrRaise(Result<T> result) {
  if (!result) Raise(result.error());
  return *std::move(result);
}

template <class T>
T OrRaise(Result<T, PlanFailure> result, const std::string& path) {
  if (!result) Raise(result.error(), path);
  return *std::move(result);
}

void AddErrors(py::module_& module);

}  // namespace qal::python

#endif  // QAL_PYTHON_ERRORS_H_
