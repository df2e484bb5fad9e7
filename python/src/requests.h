#ifndef QAL_PYTHON_REQUESTS_H_
#define QAL_PYTHON_REQUESTS_H_

#include <qal/plan/line.h>

#include "../../io/program_file.h"
#include "arm.h"
#include "arrays.h"

// What is to be planned or explained, from Python's arguments.
namespace qal::python {

/// A number for all, or three.
LimitScale ReadScale(const py::object& scale);

/// Of a line: a pose, joints that have it, or a displacement of the start.
Pose ReadEnd(const Arm& arm, const Joints& from, const py::object& to, const py::object& by);

struct PyProgram {
  io::ProgramFile file;
  py::object source;  ///< its file from any folder, or what such a file holds
};

PyProgram ReadProgramOf(const Arm& arm, const py::object& program);

/// What texts call the way of a step: "line".
const char* StepName(const ProgramStep& step);

/// Defines a method of lines, which takes what `plan_line` takes.
/// @param call is given the arm as Python has it, the start, the end and the limits
template <class Call>
void DefLine(py::class_<PyArm>& arm, const char* name, Call call, const char* doc) {
  const LineLimits d;
  arm.def(
      name,
      [call](const py::object& self, const py::object& start, const py::object& to,
             const py::object& by, double speed, double acceleration, double jerk,
             double turn_speed, double turn_acceleration, double turn_jerk, const py::object& scale,
             double max_orientation_error) {
        const Joints from = ReadJoints(start, "start");
        const Pose end = ReadEnd(self.cast<const PyArm&>().arm(), from, to, by);
        return call(self, from, end,
                    LineLimits{speed, acceleration, jerk, turn_speed, turn_acceleration, turn_jerk,
                               ReadScale(scale), max_orientation_error});
      },
      py::arg("start"), py::arg("to") = py::none(), py::kw_only(), py::arg("by") = py::none(),
      py::arg("speed") = d.speed_m_s, py::arg("acceleration") = d.acceleration_m_s2,
      py::arg("jerk") = d.jerk_m_s3, py::arg("turn_speed") = d.turn_speed_rad_s,
      py::arg("turn_acceleration") = d.turn_acceleration_rad_s2,
      py::arg("turn_jerk") = d.turn_jerk_rad_s3, py::arg("scale") = 1.0,
      py::arg("max_orientation_error") = 0.0, doc);
}

}  // namespace qal::python

#endif  // QAL_PYTHON_REQUESTS_H_
