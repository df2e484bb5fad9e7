#ifndef QAL_PYTHON_MOTION_H_
#define QAL_PYTHON_MOTION_H_

#include <qal/plan/joint_move.h>
#include <qal/plan/line.h>
#include <qal/plan/program.h>

#include <variant>

#include "arm.h"

namespace qal::python {

/// Python's `Motion`: what was planned, at any time.
struct PyMotion {
  Arm arm;
  py::object
      source;  ///< what a pickle holds: (arm, function, arguments, named ones); planned again
  std::variant<JointMotion, LineMotion, ProgramMotion> motion;

  double duration_s() const;
  /// @throw TypeError where it is no program's
  const ProgramMotion& Program() const;
};

/// `Motion`, and the planning of an arm's.
void AddMotion(py::module_& module, py::class_<PyArm>& arm);
/// How a program's motion is played: `Playback`, and stop, resume and override as a whole.
void AddPlayback(py::module_& module, py::class_<PyMotion>& motion);

}  // namespace qal::python

#endif  // QAL_PYTHON_MOTION_H_
