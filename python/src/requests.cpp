#include "requests.h"

#include <qal/solve/kinematics.h>

#include "errors.h"
#include "poses.h"

namespace qal::python {

LimitScale ReadScale(const py::object& scale) {
  const py::array_t<double> numbers = ReadNumbers(scale, "scale");
  if (numbers.ndim() == 0) return {*numbers.data(), *numbers.data(), *numbers.data()};
  const Vec3 each = ReadVector(scale, "scale");
  return {each.x, each.y, each.z};
}

// A pose, joints that have it, or a displacement of the start.
Pose ReadEnd(const Arm& arm, const Joints& from, const py::object& to, const py::object& by) {
  if (to.is_none() == by.is_none()) {
    throw py::type_error("one of to and by= is expected, for the end");
  }
  if (!by.is_none()) {
    Pose pose = OrRaise(Forward(arm, from));
    const Vec3 move = ReadVector(by, "by");
    pose.position.x += move.x;
    pose.position.y += move.y;
    pose.position.z += move.z;
    return pose;
  }
  if (py::isinstance<Poses>(to)) return to.cast<const Poses&>().One("to");
  return OrRaise(Forward(arm, ReadJoints(to, "to")));
}

PyProgram ReadProgramOf(const Arm& arm, const py::object& program) {
  if (!py::isinstance<py::dict>(program)) {
    const auto path = program.cast<std::filesystem::path>();
    return {io::ReadProgram(path, arm), py::str(Absolute(path))};
  }
  const py::module_ json = py::module_::import("json");
  const py::object text = json.attr("dumps")(program);
  return {io::ReadProgram(io::ParseJson(text.cast<std::string>(), "program"), arm),
          json.attr("loads")(text)};
}

const char* StepName(const ProgramStep& step) {
  if (std::holds_alternative<LineStep>(step)) return "line";
  return std::holds_alternative<ArcStep>(step) ? "arc" : "move";
}

}  // namespace qal::python
