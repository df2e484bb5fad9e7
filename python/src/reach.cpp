#include "reach.h"

#include <fmt/format.h>
#include <qal/study/reach.h>

#include "../../io/reach_file.h"
#include "../../io/reach_study.h"
#include "arm.h"
#include "arrays.h"
#include "batches.h"
#include "class.h"
#include "errors.h"
#include "poses.h"

namespace qal::python {

namespace {

ReachStudy MadeStudy(const py::object& box_min, const py::object& box_max, double step,
                     int directions, int spins, const py::object& tilt_axis, double tilt_cone,
                     double line, const py::object& line_direction, const py::object& poses) {
  ReachStudy study;
  study.box_min = ReadVector(box_min, "box_min");
  study.box_max = ReadVector(box_max, "box_max");
  study.step_m = step;
  study.directions = directions;
  study.spins = spins;
  study.tilt_axis = ReadVector(tilt_axis, "tilt_axis");
  study.tilt_cone_rad = tilt_cone;
  study.line_m = line;
  if (!line_direction.is_none()) {
    study.line_direction = ReadVector(line_direction, "line_direction");
  }
  if (!poses.is_none()) {
    const Poses& read = ReadPoses(poses, "poses");
    if (read.count() == 0) throw py::value_error("poses: one at least is expected");
    study.poses.assign(read.data(), read.data() + read.count());
  }
  (void)OrRaise(GridOf(study));
  return study;
}

py::object PlacedPoses(const ReachStudy& study) {
  if (study.poses.empty()) return py::none();
  Poses poses = MakePoses(study.poses.size(), false);
  std::copy(study.poses.begin(), study.poses.end(), Writable(poses));
  return py::cast(std::move(poses));
}

// What a study is made of: the arguments that make it again.
py::dict ArgumentsOf(const ReachStudy& study) {
  const auto three = [](const Vec3& v) { return py::make_tuple(v.x, v.y, v.z); };
  // All of its members: one more doesn't compile.
  const auto& [box_min, box_max, step_m, directions, spins, tilt_axis, tilt_cone_rad, line_m,
               line_direction, poses] = study;
  py::dict arguments;
  arguments["box_min"] = three(box_min);
  arguments["box_max"] = three(box_max);
  arguments["step"] = step_m;
  arguments["directions"] = directions;
  arguments["spins"] = spins;
  arguments["tilt_axis"] = three(tilt_axis);
  arguments["tilt_cone"] = tilt_cone_rad;
  arguments["line"] = line_m;
  arguments["line_direction"] = line_direction ? py::object(three(*line_direction)) : py::none();
  arguments["poses"] = PlacedPoses(study);
  return arguments;
}

std::string TextOf(const ReachStudy& study) {
  std::string text;
  for (const auto& [name, value] : ArgumentsOf(study)) {
    text += fmt::format("{}{}={}", text.empty() ? "" : ", ", std::string(py::str(name)),
                        std::string(py::repr(value)));
  }
  return fmt::format("ReachStudy({})", text);
}

py::array_t<double> Orientations(const ReachStudy& study) {
  const std::vector<Quat> tried = OrRaise(OrientationsOf(study));
  py::array_t<double> rows = MakeRows(tried.size(), 4, false);
  double* out = rows.mutable_data();
  for (const Quat& q : tried) {
    for (const double number : {q.w, q.x, q.y, q.z}) *out++ = number;
  }
  return rows;
}

// Calls `take(name, member)` for what arrays of cells hold: the names of the file's datasets.
template <class Take>
void ForEachColumn(const Take& take) {
  take("reached_directions", &ReachCell::directions);
  take("solutions", &ReachCell::solutions);
  take("margin", &ReachCell::margin_rad);
  take("smallest_singular_value", &ReachCell::smallest_singular_value);
  take("orientation", &ReachCell::orientation);
}

constexpr const char* kJoints = "joints";

py::dict ArraysOf(const std::vector<ReachCell>& cells) {
  py::dict arrays;
  ForEachColumn([&](const char* name, auto member) {
    using Value = std::decay_t<decltype(ReachCell().*member)>;
    py::array_t<Value> column(static_cast<py::ssize_t>(cells.size()));
    Value* out = column.mutable_data();
    for (const ReachCell& cell : cells) *out++ = cell.*member;
    arrays[name] = std::move(column);
  });
  py::array_t<double> joints = MakeRows(cells.size(), 6, false);
  double* out = joints.mutable_data();
  for (const ReachCell& cell : cells) out = std::copy_n(cell.joints.data(), 6, out);
  arrays[kJoints] = std::move(joints);
  return arrays;
}

// An array of so many numbers.
template <class T>
py::array_t<T, py::array::c_style | py::array::forcecast> ColumnOf(const py::dict& arrays,
                                                                   const char* name, size_t count) {
  const auto column =
      arrays[name].cast<py::array_t<T, py::array::c_style | py::array::forcecast>>();
  if (static_cast<size_t>(column.size()) == count) return column;
  throw py::value_error(fmt::format("{}: {} numbers are expected, not {}", name, count,
                                    static_cast<size_t>(column.size())));
}

std::vector<ReachCell> CellsIn(const py::dict& arrays, size_t count) {
  std::vector<ReachCell> cells(count);
  ForEachColumn([&](const char* name, auto member) {
    using Value = std::decay_t<decltype(ReachCell().*member)>;
    const auto column = ColumnOf<Value>(arrays, name, count);
    const Value* value = column.data();
    for (ReachCell& cell : cells) cell.*member = *value++;
  });
  const auto joints = ColumnOf<double>(arrays, kJoints, count * 6);
  for (size_t i = 0; i < count; ++i) {
    std::copy_n(joints.data() + 6 * i, 6, cells[i].joints.begin());
  }
  return cells;
}

py::dict ReachOf(const PyArm& arm, const ReachStudy& study, size_t first, size_t last,
                 unsigned threads, const py::object& progress) {
  const size_t directions =
      (std::max(first, last) - first) * static_cast<size_t>(DirectionsOf(study));
  return ArraysOf(OrRaise(RunUnlocked(progress, threads, directions, [&](const auto& options) {
    return Reach(arm.arm(), study, first, last, options);
  })));
}

void SaveReach(const std::filesystem::path& path, const PyArm& arm, const ReachStudy& study,
               const py::dict& arrays) {
  // With the interpreter's lock: h5py may work with the same library.
  io::WriteReachFile(path, {io::ReachStudyJson(arm.loaded, study).dump(), study, 0,
                            CellsIn(arrays, OrRaise(GridOf(study)).cells())});
}

void AddStudy(py::module_& module) {
  const ReachStudy d;
  const auto vector = [](Vec3 ReachStudy::*member) {
    return [member](const ReachStudy& study) { return ToArray(study.*member); };
  };
  NewClass<ReachStudy>(module, "ReachStudy",
                       R"(A box of cells, and the orientations of the tool that are tried in each.

Cells are cubes, as few as cover the box and centred on it; a box without extent along an axis has
one layer there. Each is studied at its centre, from directions of the tool's z axis that are spread
evenly. Immutable.

Parameters
----------
box_min, box_max : (3,) array_like
    Opposite corners of the box [m, base frame].
step : float
    Edge of a cell [m].
directions : int
    Of the tool's z axis, 1 to 100000.
spins : int
    Rolls about each direction, one of which has to be reached, 1 to 36.
tilt_axis : (3,) array_like
    The direction in the base frame that the tool's z axis has without tilt, of any length.
tilt_cone : float
    Directions are within this angle of the tilt axis [rad], 0 to pi.
line : float
    Length of the straight approach on which the tool has to arrive, all of it without a change of
    branch [m]; 0: none.
line_direction : (3,) array_like, optional
    Where the approach leads [base frame], of any length; None: along the tool's z axis.
poses : Pose, optional
    Poses that are to be reached, up to 1,000,000: then cells are positions of the arm's base, in the
    frame of the poses, and directions, spins and tilt are not looked at.

Raises
------
RequestError
    With the number that doesn't work, and the nearest that does.)")
      .def(py::init(&MadeStudy), py::arg("box_min"), py::arg("box_max"), py::arg("step") = d.step_m,
           py::kw_only(), py::arg("directions") = d.directions, py::arg("spins") = d.spins,
           py::arg("tilt_axis") = py::make_tuple(0, 0, -1), py::arg("tilt_cone") = d.tilt_cone_rad,
           py::arg("line") = d.line_m, py::arg("line_direction") = py::none(),
           py::arg("poses") = py::none())
      .def_property_readonly("box_min", vector(&ReachStudy::box_min),
                             "(3,) array: corner of the box [m, base frame].")
      .def_property_readonly("box_max", vector(&ReachStudy::box_max),
                             "(3,) array: the opposite corner [m, base frame].")
      .def_readonly("step", &ReachStudy::step_m, "Edge of a cell [m].")
      .def_readonly("directions", &ReachStudy::directions, "How many are tried in each cell.")
      .def_readonly("spins", &ReachStudy::spins, "Rolls about each direction.")
      .def_property_readonly("tilt_axis", vector(&ReachStudy::tilt_axis),
                             "(3,) array: the middle of the directions [base frame].")
      .def_readonly("tilt_cone", &ReachStudy::tilt_cone_rad,
                    "How far directions are from the tilt axis at the most [rad].")
      .def_readonly("line", &ReachStudy::line_m, "Length of the straight approach [m]; 0: none.")
      .def_property_readonly(
          "line_direction",
          [](const ReachStudy& study) -> py::object {
            if (!study.line_direction) return py::none();
            return ToArray(*study.line_direction);
          },
          "(3,) array: where the approach leads [base frame]; None: along the tool's z axis.")
      .def_property_readonly("poses", &PlacedPoses,
                             "Poses that are to be reached, where the base is placed; or None.")
      .def_property_readonly("direction_count", &DirectionsOf,
                             "How many directions are tried in each cell; of a placement how many "
                             "poses.")
      .def_property_readonly(
          "grid_count",
          [](const ReachStudy& study) { return py::cast(OrRaise(GridOf(study)).count); },
          "[nx, ny, nz]: how many cells there are along x, y and z.")
      .def_property_readonly(
          "grid_first",
          [](const ReachStudy& study) { return ToArray(OrRaise(GridOf(study)).first); },
          "(3,) array: the first cell's centre [m, base frame]; the next ones are a step away.")
      .def_property_readonly("orientations", &Orientations,
                             "(directions * spins, 4) array: what is tried in each cell, as "
                             "quaternions w x y z, tool to base, spin by spin; of a placement "
                             "(poses, 4).")
      .def_property_readonly(
          "cell_count", [](const ReachStudy& study) { return OrRaise(GridOf(study)).cells(); },
          "How many cells there are.")
      .def_property_readonly(
          "pose_count",
          [](const ReachStudy& study) {
            return OrRaise(GridOf(study)).cells() * OrRaise(OrientationsOf(study)).size();
          },
          "How many poses are solved: of each cell all orientations.")
      .def("__eq__",
           [](const ReachStudy& one, const py::object& other) {
             return py::isinstance<ReachStudy>(other) &&
                    ArgumentsOf(one).equal(ArgumentsOf(other.cast<const ReachStudy&>()));
           })
      .def("__repr__", &TextOf)
      .def(py::pickle(&ArgumentsOf, [](const py::dict& arguments) {
        return py::type::of<ReachStudy>()(**arguments).cast<ReachStudy>();
      }));
}

}  // namespace

void AddReach(py::module_& module) {
  AddStudy(module);
  module.def("reach_cells", &ReachOf, py::arg("arm"), py::arg("study"), py::arg("first"),
             py::arg("last"), py::arg("threads"), py::arg("progress"),
             "Arrays of cells first to last - 1; progress is told of directions of cells.");
  module.def("save_reach", &SaveReach, py::arg("path"), py::arg("arm"), py::arg("study"),
             py::arg("cells"), "Writes a study's file, of the arrays of all cells.");
}

}  // namespace qal::python
