#include "poses.h"

#include <fmt/format.h>
#include <qal/model/rotations.h>

#include <cmath>

#include "../../src/kinematics/solve/pose_encoding.h"
#include "../../src/qal/solve/solver_calls.h"
#include "class.h"

namespace qal::python {

namespace {

static_assert(sizeof(Pose) == 7 * sizeof(double), "a row of seven numbers is a pose");

constexpr double kOrigin[3] = {0, 0, 0};

void WriteMatrix(const Quat& q, double* m, py::ssize_t stride) {
  double rotation[9];
  double position[3];
  EncodePose({0, 0, 0}, {q.w, q.x, q.y, q.z}, rotation, position);
  for (int i = 0; i < 9; ++i) m[i / 3 * stride + i % 3] = rotation[i];
}

// Columns of the poses, as a view.
py::array Columns(const py::object& self, py::ssize_t first, py::ssize_t count) {
  const auto& poses = self.cast<const Poses&>();
  const auto& numbers = poses.numbers();
  constexpr py::ssize_t kSize = sizeof(double);
  const double* const data = numbers.data() + first;
  py::array_t<double> columns =
      poses.single()
          ? py::array_t<double>({count}, {kSize}, data, numbers)
          : py::array_t<double>({numbers.shape(0), count}, {7 * kSize, kSize}, data, numbers);
  Freeze(columns);
  return std::move(columns);
}

// A rotation to 1e-6, so that a matrix at single precision is one.
void ExpectRotation(const double* m, size_t row) {
  for (int i = 0; i < 3; ++i) {
    for (int j = i; j < 3; ++j) {
      const double product =
          m[3 * i] * m[3 * j] + m[3 * i + 1] * m[3 * j + 1] + m[3 * i + 2] * m[3 * j + 2];
      if (std::abs(product - (i == j ? 1 : 0)) <= 1e-6) continue;
      throw py::value_error(fmt::format(
          "matrices: rows at right angles and of length 1 are expected; in matrix {} the product "
          "of rows {} and {} is {:.6g}",
          row, i, j, product));
    }
  }
  const double determinant = m[0] * (m[4] * m[8] - m[5] * m[7]) -
                             m[1] * (m[3] * m[8] - m[5] * m[6]) +
                             m[2] * (m[3] * m[7] - m[4] * m[6]);
  if (determinant > 0) return;
  throw py::value_error(
      fmt::format("matrices: rotations are expected; matrix {} is a reflection", row));
}

// Rows of w, x, y, z.
Rows ReadMatrices(const py::object& given) {
  const auto matrices = ReadNumbers(given, "matrices");
  const py::ssize_t dims = matrices.ndim();
  if (dims < 2 || dims > 3 || matrices.shape(dims - 1) != 3 || matrices.shape(dims - 2) != 3) {
    throw py::value_error(fmt::format("matrices: shape (3, 3) or (n, 3, 3) is expected, not {}",
                                      ShapeText(matrices)));
  }
  const size_t rows = dims == 2 ? 1 : static_cast<size_t>(matrices.shape(0));
  Rows quats = {MakeRows(rows, 4, dims == 2), rows, dims == 2};
  double* out = quats.numbers.mutable_data();
  for (size_t i = 0; i < rows; ++i) {
    const double* const m = matrices.data() + 9 * i;
    ExpectRotation(m, i);
    const auto [w, x, y, z] = QuaternionOf(ToFrame(kOrigin, m).rotation);
    for (const double number : {w, x, y, z}) *out++ = number;
  }
  return quats;
}

struct Orientations {
  py::object wxyz, xyzw, matrices, rotations;
};

// The orientations given in one of four ways, as rows of w, x, y, z.
Rows ReadOrientations(const Orientations& given) {
  const int count = !given.wxyz.is_none() + !given.xyzw.is_none() + !given.matrices.is_none() +
                    !given.rotations.is_none();
  if (count != 1) {
    throw py::type_error(
        "Pose: one of quat_wxyz=, quat_xyzw=, matrices= and rotations= is expected");
  }
  if (!given.wxyz.is_none()) return ReadRows(given.wxyz, 4, "quat_wxyz");
  if (!given.matrices.is_none()) {
    return ReadMatrices(given.matrices);
  }
  const bool is_rotation = given.xyzw.is_none();
  const Rows xyzw = is_rotation ? ReadRows(given.rotations.attr("as_quat")(), 4, "rotations")
                                : ReadRows(given.xyzw, 4, "quat_xyzw");
  Rows quats = {MakeRows(xyzw.count, 4, xyzw.single), xyzw.count, xyzw.single};
  double* out = quats.numbers.mutable_data();
  for (size_t i = 0; i < xyzw.count; ++i) {
    for (size_t k = 0; k < 4; ++k) out[4 * i + k] = xyzw.data()[4 * i + (k + 3) % 4];
  }
  return quats;
}

Poses MadeOf(const py::object& positions, const Orientations& given) {
  const Rows place = ReadRows(positions, 3, "positions");
  const Rows quats = ReadOrientations(given);
  if (!quats.single && !place.single && quats.count != place.count) {
    throw py::value_error(
        fmt::format("Pose: {} positions, but {} orientations", place.count, quats.count));
  }
  const bool single = place.single && quats.single;
  const size_t count = place.single ? quats.count : place.count;
  Poses poses = MakePoses(count, single);
  Pose* const out = Writable(poses);
  for (size_t i = 0; i < count; ++i) {
    const double* p = place.data() + (place.single ? 0 : 3 * i);
    const double* q = quats.data() + (quats.single ? 0 : 4 * i);
    out[i] = {{p[0], p[1], p[2]}, {q[0], q[1], q[2], q[3]}};
  }
  return poses;
}

py::array Matrices(const Poses& poses, bool homogeneous) {
  const py::ssize_t size = homogeneous ? 4 : 3;
  const auto count = static_cast<py::ssize_t>(poses.count());
  py::array_t<double> matrices =
      poses.single() ? py::array_t<double>({size, size}) : py::array_t<double>({count, size, size});
  double* m = matrices.mutable_data();
  for (py::ssize_t i = 0; i < count; ++i, m += size * size) {
    const Pose& pose = poses.data()[i];
    WriteMatrix(pose.orientation, m, size);
    if (!homogeneous) continue;
    m[3] = pose.position.x;
    m[7] = pose.position.y;
    m[11] = pose.position.z;
    m[12] = m[13] = m[14] = 0;
    m[15] = 1;
  }
  return matrices;
}

py::array QuatXyzw(const Poses& poses) {
  py::array_t<double> quats = MakeRows(poses.count(), 4, poses.single());
  double* out = quats.mutable_data();
  for (size_t i = 0; i < poses.count(); ++i) {
    const auto& [w, x, y, z] = poses.data()[i].orientation;
    *out++ = x;
    *out++ = y;
    *out++ = z;
    *out++ = w;
  }
  return quats;
}

std::string Repr(const Poses& poses) {
  if (!poses.single()) return fmt::format("<{} poses>", poses.count());
  const auto& [p, q] = *poses.data();
  return fmt::format("Pose([{:.6g}, {:.6g}, {:.6g}], quat_wxyz=[{:.6g}, {:.6g}, {:.6g}, {:.6g}])",
                     p.x, p.y, p.z, q.w, q.x, q.y, q.z);
}

Poses At(const Poses& poses, const py::object& index) {
  if (poses.single()) throw py::type_error("a single pose has no elements");
  const py::array picked = poses.numbers().attr("__getitem__")(index);
  const bool single = picked.ndim() == 1;
  auto rows = py::array_t<double, py::array::c_style | py::array::forcecast>::ensure(
      single ? picked.attr("reshape")(1, 7) : py::object(picked));
  return {std::move(rows), single};
}

}  // namespace

Poses::Poses(const Pose& pose)
    : numbers_({py::ssize_t{1}, py::ssize_t{7}}, &pose.position.x), single_(true) {}

const Poses& ReadPoses(const py::handle& given, const char* name) {
  if (py::isinstance<Poses>(given)) return given.cast<const Poses&>();
  throw py::type_error(
      fmt::format("{}: a Pose is expected, as Pose(positions, quat_wxyz=...) makes, not {}", name,
                  std::string(py::str(py::type::of(given)))));
}

const Pose* Poses::data() const { return reinterpret_cast<const Pose*>(numbers_.data()); }

const Pose& Poses::One(const char* name) const {
  if (!single_) {
    throw py::value_error(fmt::format("{}: a single pose is expected, not {}", name, count()));
  }
  return *data();
}

Poses MakePoses(size_t count, bool single) {
  return {py::array_t<double>({static_cast<py::ssize_t>(count), py::ssize_t{7}}), single};
}

Pose* Writable(Poses& poses) {
  return reinterpret_cast<Pose*>(const_cast<py::array_t<double>&>(poses.numbers()).mutable_data());
}

void AddPose(py::module_& module) {
  NewClass<Poses>(module, "Pose", R"(One pose of the tool in the base frame, or many.

Orientations turn the tool frame to the base frame, and are given and taken by name, so that the
order of a quaternion is never open. They need not be of length 1.

Parameters
----------
positions : (3,) or (n, 3) array_like
    The tool centre point [m, base frame].
quat_wxyz, quat_xyzw : (4,) or (n, 4) array_like, optional
    A quaternion with its scalar first, or last.
matrices : (3, 3) or (n, 3, 3) array_like, optional
    Rotation matrices; the columns are the tool's axes.
rotations : scipy.spatial.transform.Rotation, optional

One of the four is expected. A single position or orientation stands for all.)")
      .def(py::init([](const py::object& positions, py::object wxyz, py::object xyzw,
                       py::object matrices, py::object rotations) {
             return MadeOf(positions, {std::move(wxyz), std::move(xyzw), std::move(matrices),
                                       std::move(rotations)});
           }),
           py::arg("positions"), py::kw_only(), py::arg("quat_wxyz") = py::none(),
           py::arg("quat_xyzw") = py::none(), py::arg("matrices") = py::none(),
           py::arg("rotations") = py::none())
      .def_property_readonly(
          "positions", [](const py::object& self) { return Columns(self, 0, 3); },
          "(3,) or (n, 3) array: the tool centre point [m, base frame]. A view.")
      .def_property_readonly(
          "quat_wxyz", [](const py::object& self) { return Columns(self, 3, 4); },
          "(4,) or (n, 4) array: quaternions, scalar first. A view.")
      .def_property_readonly("quat_xyzw", &QuatXyzw,
                             "(4,) or (n, 4) array: quaternions, scalar last.")
      .def_property_readonly(
          "matrices", [](const Poses& poses) { return Matrices(poses, false); },
          "(3, 3) or (n, 3, 3) array: rotation matrices, tool to base.")
      .def_property_readonly(
          "homogeneous", [](const Poses& poses) { return Matrices(poses, true); },
          "(4, 4) or (n, 4, 4) array: rotation and position.")
      .def_property_readonly(
          "rotations",
          [](const Poses& poses) {
            return py::module_::import("scipy.spatial.transform")
                .attr("Rotation")
                .attr("from_quat")(QuatXyzw(poses));
          },
          "scipy.spatial.transform.Rotation: the orientations.")
      .def_property_readonly("single", &Poses::single, "Whether it is one pose.")
      .def("__len__",
           [](const Poses& poses) {
             if (poses.single()) throw py::type_error("a single pose has no length");
             return poses.count();
           })
      .def("__getitem__", &At)
      .def("__repr__", &Repr)
      .def("__eq__",
           [](const Poses& a, const Poses& b) {
             return a.single() == b.single() && py::module_::import("numpy")
                                                    .attr("array_equal")(a.numbers(), b.numbers())
                                                    .cast<bool>();
           })
      .def(py::pickle(
          [](const Poses& poses) { return py::make_tuple(poses.numbers(), poses.single()); },
          [](const py::tuple& state) {
            return Poses(state[0].cast<py::array_t<double>>(), state[1].cast<bool>());
          }));
}

}  // namespace qal::python
