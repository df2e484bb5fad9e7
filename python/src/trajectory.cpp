#include "trajectory.h"

#include <fmt/format.h>

#include "../../io/files.h"
#include "../../io/findings.h"
#include "../../io/report_html.h"
#include "../../io/trajectory_file.h"
#include "class.h"
#include "poses.h"

namespace qal::python {

namespace {

// Numbers of each sample where they lie, for as long as somebody looks at them.
// @param first of the first sample
py::object View(const py::object& self, const double* first, std::vector<py::ssize_t> row) {
  std::vector<py::ssize_t> strides(row.size(), sizeof(double));
  row.insert(row.begin(),
             static_cast<py::ssize_t>(self.cast<const PyTrajectory&>().samples->size()));
  strides.insert(strides.begin(), sizeof(io::FileSample));
  py::array_t<double> view(row, strides, first, self);
  Freeze(view);
  return std::move(view);
}

py::object TimesOf(const py::object& self) {
  return View(self, &self.cast<const PyTrajectory&>().samples->front().time_s, {});
}

py::object JointsOf(const py::object& self) {
  return View(self, self.cast<const PyTrajectory&>().samples->front().joints.data(), {6});
}

// Rates that every sample has; none where one lacks them.
template <std::optional<Joints> io::FileSample::*kRates>
py::object RatesOf(const py::object& self) {
  const io::FileTrajectory& samples = *self.cast<const PyTrajectory&>().samples;
  for (const io::FileSample& sample : samples) {
    if (!(sample.*kRates)) return py::none();
  }
  return View(self, (samples.front().*kRates)->data(), {6});
}

// Poses are rows of their own, made when they are first asked for.
py::object PosesOf(const PyTrajectory& self) {
  if (!io::PartsOf(*self.samples).pose) return py::none();
  if (!self.poses) {
    self.poses = MakePoses(self.samples->size(), false);
    Pose* out = Writable(*self.poses);
    for (const io::FileSample& sample : *self.samples) *out++ = *sample.pose;
  }
  return py::cast(*self.poses);
}

PyTrajectory MadeTrajectory(const py::object& time, const py::object& joints,
                            const py::object& velocities, const py::object& accelerations,
                            const std::optional<Poses>& pose) {
  const Rows q = ReadRows(joints, 6, "joints");
  const py::array_t<double> t = ReadColumn(time, q.count, "time");
  const auto rows_of = [&](const py::object& given, const char* name) {
    std::optional<Rows> rows;
    if (given.is_none()) return rows;
    rows = ReadRows(given, 6, name);
    if (rows->count != q.count) {
      throw py::value_error(fmt::format("{}: {} rows are expected, as of joints, not {}", name,
                                        q.count, rows->count));
    }
    return rows;
  };
  const auto qd = rows_of(velocities, "velocities");
  const auto qdd = rows_of(accelerations, "accelerations");
  if (pose && pose->count() != q.count) {
    throw py::value_error(
        fmt::format("pose: {} are expected, as of joints, not {}", q.count, pose->count()));
  }
  if (q.count == 0) throw py::value_error("joints: at least one row is expected");
  const auto row = [](const Rows& rows, size_t i) {
    Joints six;
    std::copy_n(rows.data() + 6 * i, 6, six.begin());
    return six;
  };
  io::FileTrajectory samples;
  for (size_t i = 0; i < q.count; ++i) {
    io::FileSample sample = {t.data()[i], row(q, i)};
    if (qd) sample.velocities = row(*qd, i);
    if (qdd) sample.accelerations = row(*qdd, i);
    if (pose) sample.pose = pose->data()[i];
    samples.push_back(sample);
  }
  io::LocatedTrajectory located = {samples, {}};
  io::ExpectMeasurable(located);
  return PyTrajectory(std::move(samples));
}

PyTrajectory Load(const std::filesystem::path& path) {
  return PyTrajectory(io::ReadTrajectory(path, std::nullopt, {}).samples, path.filename());
}

void Save(const PyTrajectory& self, const std::filesystem::path& path, const PyArm& arm, bool full,
          const std::string& ros) {
  if (ros != "message" && ros != "goal") {
    throw py::value_error("ros: 'message' or 'goal' is expected, not '" + ros + "'");
  }
  const io::FileFormat format = io::FormatToWrite("", path, "path");
  const io::RosInterface interface =
      ros == "goal" ? io::RosInterface::kGoal : io::RosInterface::kMessage;
  io::WriteFile(path, io::TrajectoryText(*self.samples, arm.arm(), format,
                                         {full, interface, io::JointNamesOf(arm.arm())}));
}

io::Findings FindingsOf(const PyTrajectory& self, const PyArm& arm, bool strict) {
  return io::FindingsOf(arm.loaded, {*self.samples, {}}, io::LimitsOf(arm.arm()), strict);
}

void Report(const PyTrajectory& self, const std::filesystem::path& path, const PyArm& arm,
            const PyTrajectory* other) {
  io::Report report = {"qal_kinematics", self.name};
  report.motions.push_back({self.name, FindingsOf(self, arm, false)});
  if (other != nullptr) {
    report.motions.push_back({other->name, FindingsOf(*other, arm, false)});
  }
  io::ExpectReportPage();
  io::ExpectReportSize(report.motions);
  io::WriteFile(path, io::ReportHtml(io::ReportJson(arm.loaded, report)));
}

}  // namespace

void AddTrajectory(py::module_& module) {
  NewClass<PyTrajectory>(module, "Trajectory", R"(Samples of a motion, in the order of time.

Parameters
----------
time : (n,) array_like
    [s]
joints : (n, 6) array_like
    [rad]
velocities, accelerations : (n, 6) array_like, optional
    The motion's own [rad/s, rad/s^2], not differences.
pose : Pose, optional
    As many as samples.)")
      .def(py::init(&MadeTrajectory), py::arg("time"), py::arg("joints"), py::kw_only(),
           py::arg("velocities") = py::none(), py::arg("accelerations") = py::none(),
           py::arg("pose") = std::nullopt)
      .def_static("load", &Load, py::arg("path"),
                  "Reads a trajectory file in CSV, JSON or ROS YAML, whatever its name.")
      .def("save", &Save, py::arg("path"), py::arg("arm"), py::kw_only(), py::arg("full") = false,
           py::arg("ros") = "message",
           R"(Writes a file, whole or not at all, in the format that its ending says.

Parameters
----------
path : str
    .csv, .json, .yaml or .yml
arm : Arm
    Whose motion it is.
full : bool
    With CSV: rates and motor speeds as well.
ros : {'message', 'goal'}
    With YAML: a JointTrajectory, or the goal of a FollowJointTrajectory.)")
      .def(
          "verify",
          [](const PyTrajectory& self, const PyArm& arm, bool strict) {
            return Loaded(io::ReportVerdictJson(FindingsOf(self, arm, strict)));
          },
          py::arg("arm"), py::kw_only(), py::arg("strict") = false,
          R"(Holds the trajectory against the arm's limits, as `qal verify` does.

Parameters
----------
arm : Arm
strict : bool
    A limit that is but assumed is like any other.

Returns
-------
dict
    ok : bool; headline : str; checks : list of dict, for each the key, title, unit, joint (from
    1, or None), value, limit, origin of the limit, sample, time_s and state: 'ok', 'violation',
    'note' or 'measured'.)")
      .def("report", &Report, py::arg("path"), py::arg("arm"), py::arg("other") = nullptr,
           "Writes a page that plays the motion, with its plots and verdict, and another one as a "
           "ghost; as `qal report`.")
      .def_property_readonly("time", &TimesOf, "(n,) array [s], a view.")
      .def_property_readonly("joints", &JointsOf, "(n, 6) array [rad], a view.")
      .def_property_readonly("velocities", &RatesOf<&io::FileSample::velocities>,
                             "(n, 6) array [rad/s], a view; or None.")
      .def_property_readonly("accelerations", &RatesOf<&io::FileSample::accelerations>,
                             "(n, 6) array [rad/s^2], a view; or None.")
      .def_property_readonly("pose", &PosesOf, "Pose: as many as samples, or None.")
      .def_property_readonly(
          "duration",
          [](const PyTrajectory& self) {
            return self.samples->back().time_s - self.samples->front().time_s;
          },
          "From the first sample to the last [s].")
      .def("__len__", [](const PyTrajectory& self) { return self.samples->size(); })
      .def("__repr__",
           [](const PyTrajectory& self) {
             return fmt::format("<Trajectory {}: {} samples, {:.6g} s>", self.name,
                                self.samples->size(),
                                self.samples->back().time_s - self.samples->front().time_s);
           })
      .def(py::pickle(
          [](const py::object& self) {
            return py::make_tuple(self.attr("time"), self.attr("joints"), self.attr("velocities"),
                                  self.attr("accelerations"), self.attr("pose"));
          },
          [](const py::tuple& state) {
            return MadeTrajectory(state[0], state[1], state[2], state[3],
                                  state[4].cast<std::optional<Poses>>());
          }));
}

}  // namespace qal::python
