#include "arm.h"

#include <fmt/format.h>

#include "arrays.h"
#include "class.h"
#include "errors.h"

namespace qal::python {

namespace {

io::ReadOptions LinksOf(const std::optional<std::string>& base,
                        const std::optional<std::string>& tip) {
  io::ReadOptions options;
  if (base) options.base = *base;
  if (tip) options.tip = *tip;
  return options;
}

PyArm FromFile(const std::filesystem::path& path, const std::optional<std::string>& base,
               const std::optional<std::string>& tip) {
  py::list texts;  // that another process may lack
  const io::ArmFile file = io::ReadArmFile(path, LinksOf(base, tip), [&](const std::string& named) {
    std::string text = io::ReadDescriptionText(named);
    texts.append(py::bytes(text));
    return text;
  });
  if (file.kind == "solver library") texts = py::list();  // is loaded from where it lies
  return {io::MakeArm(file), py::make_tuple("from_file", Absolute(path), base, tip, texts)};
}

// An arm of a file's text, wherever the file is.
PyArm FromTexts(const py::tuple& source) {
  const auto path = source[1].cast<std::string>();
  const auto base = source[2].cast<std::optional<std::string>>();
  const auto tip = source[3].cast<std::optional<std::string>>();
  const auto texts = source[4].cast<std::vector<std::string>>();
  if (texts.empty()) return FromFile(path, base, tip);
  size_t next = 0;
  const auto read = [&](const std::string&) { return texts.at(next++); };
  return {io::MakeArm(io::ReadArmFile(path, LinksOf(base, tip), read)), source};
}

PyArm FromSolver(const std::filesystem::path& path) {
  const Solver solver = OrRaise(Solver::Load(path));
  return {{OrRaise(Arm::FromSolver(solver)), path, "solver library"},
          py::make_tuple("from_solver", Absolute(path))};
}

PyArm OfReference() {
  return {{Arm::Reference(), "", "reference arm"}, py::make_tuple("reference")};
}

PyArm WithTool(const PyArm& self, const py::object& tool) {
  const Transform frame = ReadTransform(tool, "tool");
  io::LoadedArm loaded = self.loaded;
  loaded.arm = OrRaise(self.arm().WithTool(frame));
  return {std::move(loaded), py::make_tuple("with_tool", self.source, ToArray(frame))};
}

PyArm Made(const py::tuple& source) {
  const auto how = source[0].cast<std::string>();
  if (how == "reference") return OfReference();
  if (how == "from_solver") return FromSolver(source[1].cast<std::string>());
  if (how == "with_tool") return WithTool(Made(source[1].cast<py::tuple>()), source[2]);
  return FromTexts(source);
}

// A setting of all joints.
py::array_t<double> Each(const PyArm& self, Setting JointModel::*setting) {
  Joints values;
  for (size_t j = 0; j < 6; ++j) values[j] = (self.arm().joints()[j].*setting).value;
  return ToArray(values);
}

std::vector<std::string> Names(const PyArm& self) {
  std::vector<std::string> names;
  for (const JointModel& joint : self.arm().joints()) names.push_back(joint.name);
  return names;
}

// Which limits nobody described.
std::vector<std::vector<std::string>> Assumed(const PyArm& self) {
  std::vector<std::vector<std::string>> all;
  for (const JointModel& joint : self.arm().joints()) {
    std::vector<std::string> names;
    const std::pair<const char*, const Setting&> settings[] = {
        {"lower", joint.lower_rad},         {"upper", joint.upper_rad},
        {"velocity", joint.velocity_rad_s}, {"acceleration", joint.acceleration_rad_s2},
        {"jerk", joint.jerk_rad_s3},        {"gear_ratio", joint.gear_ratio}};
    for (const auto& [name, setting] : settings) {
      if (!setting.described) names.emplace_back(name);
    }
    all.push_back(std::move(names));
  }
  return all;
}

}  // namespace

std::string Absolute(const std::filesystem::path& path) {
  return std::filesystem::absolute(path).string();
}

py::class_<PyArm> AddArm(py::module_& module) {
  py::class_<PyArm> arm =
      NewClass<PyArm>(module, "Arm", R"(A six-axis arm: its solver, its limits, its tool.

Immutable, and cheap to copy. Made by `Arm.from_file`, `Arm.from_solver` or `Arm.reference`.
Lengths are in m, angles in rad, times in s; poses are those of the tool in the base frame.)");
  const auto property = [&arm](const char* name, Setting JointModel::*setting, const char* doc) {
    arm.def_property_readonly(
        name, [setting](const PyArm& self) { return Each(self, setting); }, doc);
  };
  arm.def_static("from_file", &FromFile, py::arg("path"), py::kw_only(),
                 py::arg("base") = py::none(), py::arg("tip") = py::none(),
                 R"(Reads an arm: a URDF, a table, an arm file, or a solver library.

Parameters
----------
path : str or os.PathLike
    Whatever its name: what it holds says what it is.
base, tip : str, optional
    The links of a URDF between which the arm is; where there is but one chain of six joints,
    they need not be said.

Raises
------
FileError
    With the file, the line, and what was expected.)")
      .def_static(
          "from_solver", &FromSolver, py::arg("path"),
          "Takes an arm's solver from a library with the IKFast interface. Its code runs in this "
          "process, with many rows in several threads at once: for one that doesn't allow that "
          "(`ikcheck` tells) say threads=1.")
      .def_static("reference", &OfReference,
                  "The reference arm: arms/reference.urdf with its motors.")
      .def(
          "with_tool", &WithTool, py::arg("tool"),
          "The same arm with another tool: a (4, 4) matrix, the tool frame in the arm's tip frame.")
      .def_property_readonly(
          "name", [](const PyArm& self) { return self.arm().name(); }, "What it is called.")
      .def_property_readonly("joint_names", &Names, "The joints' names, joint 1 first.")
      .def_property_readonly(
          "family", [](const PyArm& self) { return self.arm().solver().family(); },
          "What kind of arm its solver is for: 'spherical wrist', 'three parallel axes', 'offset "
          "wrist' or 'no family'; 'libik.so' where a library solves it.")
      .def_property_readonly(
          "cycle", [](const PyArm& self) { return self.arm().cycle_s().value; },
          "The control cycle [s]: how far samples of its trajectories are apart.")
      .def_property_readonly(
          "tool", [](const PyArm& self) { return ToArray(self.arm().tool()); },
          "(4, 4) array: the tool frame in the arm's tip frame.")
      .def_property_readonly(
          "base", [](const PyArm& self) { return ToArray(self.arm().base()); },
          "(4, 4) array: the arm's base in the frame that poses are given in.")
      .def_property_readonly("assumed", &Assumed,
                             "For each joint, which of its numbers nobody described, so that they "
                             "are assumed: six lists of 'lower', 'upper', 'velocity', "
                             "'acceleration', 'jerk' and 'gear_ratio'.")
      .def("__repr__",
           [](const PyArm& self) { return fmt::format("<Arm {}>", io::ArmHeading(self.loaded)); })
      .def("__copy__", [](const PyArm& self) { return self; })
      .def("__deepcopy__", [](const PyArm& self, const py::dict&) { return self; })
      .def(py::pickle([](const PyArm& self) { return self.source.cast<py::tuple>(); }, &Made));
  property("lower", &JointModel::lower_rad,
           "(6,) array: lower limits [rad], -inf where there is none.");
  property("upper", &JointModel::upper_rad,
           "(6,) array: upper limits [rad], inf where there is none.");
  property("velocity", &JointModel::velocity_rad_s, "(6,) array: velocity limits [rad/s].");
  property("acceleration", &JointModel::acceleration_rad_s2,
           "(6,) array: acceleration limits [rad/s^2].");
  property("jerk", &JointModel::jerk_rad_s3, "(6,) array: jerk limits [rad/s^3].");
  property("gear_ratio", &JointModel::gear_ratio, "(6,) array: motor turns per turn of the joint.");
  return arm;
}

}  // namespace qal::python
