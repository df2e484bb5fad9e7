#include <fmt/format.h>
#include <qal/solve/branch.h>

#include <cmath>

#include "../../io/error_text.h"
#include "arm.h"
#include "batches.h"
#include "class.h"
#include "errors.h"
#include "poses.h"

namespace qal::python {

namespace {

static_assert(sizeof(Joints) == 6 * sizeof(double) && sizeof(Reason) == sizeof(int));
static_assert(sizeof(Singularities) == 4 * sizeof(double));

Span<const Joints> RowsOf(const Rows& rows) {
  return {reinterpret_cast<const Joints*>(rows.data()), rows.count};
}

py::array_t<int> NewReasons(size_t count) {
  return py::array_t<int>(static_cast<py::ssize_t>(count));
}

Span<Reason> SpanOf(py::array_t<int>& reasons) {
  return {reinterpret_cast<Reason*>(reasons.mutable_data()), static_cast<size_t>(reasons.size())};
}

template <class T>
Span<T> SpanOf(py::array_t<double>& rows, size_t count) {
  return {reinterpret_cast<T*>(rows.mutable_data()), count};
}

// Raises for a batch where something has no answer at all that everything should have.
void ExpectAll(const BatchCount& told, const py::array_t<int>& reasons) {
  if (told.refused == 0) return;
  const int* codes = reasons.data();
  for (py::ssize_t i = 0; i < reasons.size(); ++i) {
    if (codes[i] == 0) continue;
    Raise(Error{static_cast<Reason>(codes[i])}, fmt::format("row {}: ", i));
  }
}

Poses ForwardOf(const PyArm& self, const py::object& joints, unsigned threads,
                const py::object& progress) {
  const Rows rows = ReadRows(joints, 6, "joints");
  if (rows.single) return Poses(OrRaise(Forward(self.arm(), *RowsOf(rows).data)));
  Poses poses = MakePoses(rows.count, false);
  const Span<Pose> out = {Writable(poses), rows.count};
  py::array_t<int> reasons = NewReasons(rows.count);
  const Span<Reason> codes = SpanOf(reasons);
  const BatchCount told = RunUnlocked(progress, threads, rows.count, [&](const auto& options) {
    return Forward(self.arm(), RowsOf(rows), out, codes, options);
  });
  ExpectAll(told, reasons);
  return poses;
}

py::array_t<double> JacobianOf(const PyArm& self, const py::object& joints, unsigned threads,
                               const py::object& progress) {
  const Rows rows = ReadRows(joints, 6, "joints");
  const auto count = static_cast<py::ssize_t>(rows.count);
  py::array_t<double> matrices = rows.single
                                     ? py::array_t<double>({py::ssize_t{6}, py::ssize_t{6}})
                                     : py::array_t<double>({count, py::ssize_t{6}, py::ssize_t{6}});
  const auto out = SpanOf<JacobianMatrix>(matrices, rows.count);
  py::array_t<int> reasons = NewReasons(rows.count);
  const Span<Reason> codes = SpanOf(reasons);
  const BatchCount told = RunUnlocked(progress, threads, rows.count, [&](const auto& options) {
    return Jacobian(self.arm(), RowsOf(rows), out, codes, options);
  });
  ExpectAll(told, reasons);
  return matrices;
}

py::dict SingularitiesOf(const PyArm& self, const py::object& joints, unsigned threads,
                         const py::object& progress) {
  const Rows rows = ReadRows(joints, 6, "joints");
  py::array_t<double> distances = MakeRows(rows.count, 4, rows.single);
  const auto out = SpanOf<Singularities>(distances, rows.count);
  py::array_t<int> reasons = NewReasons(rows.count);
  const Span<Reason> codes = SpanOf(reasons);
  const BatchCount told = RunUnlocked(progress, threads, rows.count, [&](const auto& options) {
    return DistanceToSingularities(self.arm(), RowsOf(rows), out, codes, options);
  });
  ExpectAll(told, reasons);
  py::dict named;
  const char* const names[] = {"wrist", "elbow", "shoulder", "smallest_singular_value"};
  for (int i = 0; i < 4; ++i) {
    const py::tuple column = py::make_tuple(py::ellipsis(), i);
    named[names[i]] = distances.attr("__getitem__")(column);
  }
  return named;
}

// Solutions nearest a reference.
struct Nearests {
  py::array_t<double> joints;
  py::array_t<int> reasons;
};

InverseOptions OptionsOf(double step_bound) { return {step_bound}; }

void ExpectAsMany(const Rows& near, const Poses& poses) {
  if (near.single || (!poses.single() && near.count == poses.count())) return;
  throw py::value_error(
      poses.single()
          ? fmt::format("near: shape (6,) is expected for a pose, not {}", ShapeText(near.numbers))
          : fmt::format("near: shape (6,) or ({}, 6) is expected for {} poses, not {}",
                        poses.count(), poses.count(), ShapeText(near.numbers)));
}

py::object NearestOf(const PyArm& self, const py::object& pose, const py::object& near,
                     double step_bound, unsigned threads, const py::object& progress) {
  const Poses& poses = ReadPoses(pose, "pose");
  const Rows rows = ReadRows(near, 6, "near");
  ExpectAsMany(rows, poses);
  if (poses.single()) {
    const auto state = Nearest(self.arm(), *poses.data(), RowsOf(rows)[0], OptionsOf(step_bound));
    if (!state) RaiseUnsolved(*poses.data(), state.error());
    return ToArray(state->joints);
  }
  Nearests found = {MakeRows(poses.count(), 6, false), NewReasons(poses.count())};
  const auto out = SpanOf<Joints>(found.joints, poses.count());
  const Span<Reason> codes = SpanOf(found.reasons);
  const Span<const Pose> asked = {poses.data(), poses.count()};
  (void)RunUnlocked(progress, threads, poses.count(), [&](const auto& options) {
    return Nearest(self.arm(), asked, RowsOf(rows), out, codes, OptionsOf(step_bound), options);
  });
  return py::cast(std::move(found));
}

// Every solution of poses.
struct Solutions {
  bool single;
  py::array_t<int64_t> first;
  py::array_t<double> joints;
  py::array_t<double> distances;
  py::array_t<int> refusals;
  py::array_t<int> reasons;
  std::vector<std::string> texts;  ///< of a single pose
  std::vector<std::string> branches;
};

template <class Out, class In>
py::array_t<Out> Copied(const std::vector<In>& values) {
  static_assert(sizeof(Out) == sizeof(In));
  return py::array_t<Out>(static_cast<py::ssize_t>(values.size()),
                          reinterpret_cast<const Out*>(values.data()));
}

Solutions OneInverse(const PyArm& self, const Pose& pose, const Joints& near, double step_bound) {
  const auto found = Inverse(self.arm(), pose, near, OptionsOf(step_bound));
  if (!found) RaiseUnsolved(pose, found.error());
  const std::vector<Candidate>& candidates = *found;
  std::vector<Joints> joints;
  std::vector<double> distances;
  std::vector<Reason> refusals;
  Solutions all = {};
  all.single = true;
  for (const auto& [q, distance_rad, refusal] : candidates) {
    joints.push_back(q);
    distances.push_back(distance_rad);
    refusals.push_back(refusal ? refusal->reason : Reason::kNone);
    all.texts.push_back(refusal ? io::ErrorText(*refusal) : "");
    const auto branch = BranchOf(self.arm(), q);
    all.branches.push_back(branch ? BranchName(*branch) : "");
  }
  all.joints = MakeRows(joints.size(), 6, false);
  std::copy_n(joints.data()->data(), 6 * joints.size(), all.joints.mutable_data());
  all.distances = Copied<double>(distances);
  all.refusals = Copied<int>(refusals);
  const int64_t first[] = {0, static_cast<int64_t>(joints.size())};
  all.first = py::array_t<int64_t>(2, first);
  all.reasons = NewReasons(1);
  *all.reasons.mutable_data() = 0;
  return all;
}

Solutions InverseOf(const PyArm& self, const py::object& pose, const py::object& near,
                    double step_bound, unsigned threads, const py::object& progress) {
  const Poses& poses = ReadPoses(pose, "pose");
  const Rows rows = ReadRows(near, 6, "near");
  ExpectAsMany(rows, poses);
  if (poses.single()) return OneInverse(self, poses.One("pose"), RowsOf(rows)[0], step_bound);
  const Span<const Pose> asked = {poses.data(), poses.count()};
  const BatchSolutions found =
      RunUnlocked(progress, threads, poses.count(), [&](const auto& options) {
        return Inverse(self.arm(), asked, RowsOf(rows), OptionsOf(step_bound), options);
      });
  Solutions all = {};
  all.first = Copied<int64_t>(found.first);
  all.joints = MakeRows(found.joints.size(), 6, false);
  if (!found.joints.empty()) {
    std::copy_n(found.joints.data()->data(), 6 * found.joints.size(), all.joints.mutable_data());
  }
  all.distances = Copied<double>(found.distances_rad);
  all.refusals = Copied<int>(found.refusals);
  all.reasons = Copied<int>(found.reasons);
  return all;
}

py::object BranchOfJoints(const PyArm& self, const py::object& joints) {
  const auto branch = BranchOf(self.arm(), ReadJoints(joints, "joints"));
  return branch ? py::object(py::str(BranchName(*branch))) : py::object(py::none());
}

py::array Accepted(const py::array_t<int>& reasons) {
  return py::module_::import("numpy").attr("equal")(reasons, 0);
}

void AddResults(py::module_& module) {
  NewClass<Nearests>(module, "Nearest",
                     "The nearest admissible solutions of many poses: `Arm.nearest`.")
      .def_readonly("joints", &Nearests::joints, "(n, 6) array [rad]; NaN where there are none.")
      .def_readonly("reasons", &Nearests::reasons,
                    "(n,) array: 0, or why there is none, as an index of `REASONS`.")
      .def_property_readonly(
          "ok", [](const Nearests& found) { return Accepted(found.reasons); },
          "(n,) array of bool: where there is one.")
      .def("__repr__",
           [](const Nearests& found) {
             const auto solved = Accepted(found.reasons).attr("sum")().cast<py::ssize_t>();
             return fmt::format("<Nearest: {} of {} poses solved>", solved, found.reasons.size());
           })
      .def(py::pickle(
          [](const Nearests& found) { return py::make_tuple(found.joints, found.reasons); },
          [](const py::tuple& held) {
            return Nearests{held[0].cast<py::array_t<double>>(), held[1].cast<py::array_t<int>>()};
          }));
  NewClass<Solutions>(module, "Solutions", "Every solution of a pose, or of many: `Arm.inverse`.")
      .def_readonly("joints", &Solutions::joints,
                    "(k, 6) array [rad], each joint at the turn nearest the reference.")
      .def_readonly("distances", &Solutions::distances,
                    "(k,) array: sum of the absolute differences to the reference [rad].")
      .def_readonly("refusals", &Solutions::refusals,
                    "(k,) array: 0, or why it isn't admissible, as an index of `REASONS`.")
      .def_property_readonly(
          "admissible", [](const Solutions& all) { return Accepted(all.refusals); },
          "(k,) array of bool: which may be used.")
      .def_readonly("first", &Solutions::first,
                    "(n + 1,) array: the solutions of pose i are those from first[i] up to "
                    "first[i + 1].")
      .def_readonly("reasons", &Solutions::reasons,
                    "(n,) array: 0, or why a pose has no solutions, as an index of `REASONS`.")
      .def_readonly("texts", &Solutions::texts,
                    "Of a single pose, for each solution why it isn't admissible, in words.")
      .def_readonly("branches", &Solutions::branches,
                    "Of a single pose, each solution's branch: shoulder, elbow, wrist.")
      .def("__len__", [](const Solutions& all) { return all.joints.shape(0); })
      .def("__repr__",
           [](const Solutions& all) {
             const auto admissible = Accepted(all.refusals).attr("sum")().cast<py::ssize_t>();
             return fmt::format("<{} solutions of {}, {} admissible>", all.joints.shape(0),
                                all.single ? "a pose" : fmt::format("{} poses", all.reasons.size()),
                                admissible);
           })
      .def(py::pickle(
          [](const Solutions& all) {
            return py::make_tuple(all.single, all.first, all.joints, all.distances, all.refusals,
                                  all.reasons, all.texts, all.branches);
          },
          [](const py::tuple& held) {
            return Solutions{held[0].cast<bool>(),
                             held[1].cast<py::array_t<int64_t>>(),
                             held[2].cast<py::array_t<double>>(),
                             held[3].cast<py::array_t<double>>(),
                             held[4].cast<py::array_t<int>>(),
                             held[5].cast<py::array_t<int>>(),
                             held[6].cast<std::vector<std::string>>(),
                             held[7].cast<std::vector<std::string>>()};
          }));
}

}  // namespace

void AddSolving(py::module_& module, py::class_<PyArm>& arm) {
  AddResults(module);
  const double any = std::numeric_limits<double>::infinity();
  const auto threads = py::arg("threads") = 0U;
  const auto progress = py::arg("progress") = py::none();
  arm.def("forward", &ForwardOf, py::arg("joints"), py::kw_only(), threads, progress,
          R"(The tool's pose in the base frame.

Parameters
----------
joints : (6,) or (n, 6) array_like
    Joint angles [rad], joint 1 first.
threads : int
    How many work on many rows; 0: as many as there are cores. The answers don't depend on it.
progress : callable, optional
    Called now and then with the number of rows done since the last call, like tqdm's `update`.

Returns
-------
Pose)")
      .def("inverse", &InverseOf, py::arg("pose"), py::arg("near"), py::kw_only(),
           py::arg("step_bound") = any, threads, progress,
           R"(Every solution of a pose, admissible or not.

Parameters
----------
pose : Pose
    One, or many.
near : (6,) or (n, 6) array_like
    Reference joints [rad]: turns and distances are as seen from there.
step_bound : float
    How far each joint may be from its reference [rad].
threads, progress
    As for `forward`.

Returns
-------
Solutions

Raises
------
OutOfReachError
    Of a single pose; of many, `Solutions.reasons` tell.)")
      .def("nearest", &NearestOf, py::arg("pose"), py::arg("near"), py::kw_only(),
           py::arg("step_bound") = any, threads, progress,
           R"(The admissible solution nearest a reference.

Parameters
----------
pose, near, step_bound, threads, progress
    As for `inverse`.

Returns
-------
(6,) array, or of many poses Nearest

Raises
------
OutOfReachError, JointRangeError, StepBoundError
    Of a single pose; of many, `Nearest.reasons` tell.)")
      .def("jacobian", &JacobianOf, py::arg("joints"), py::kw_only(), threads, progress,
           "(6, 6) or (n, 6, 6) array: the geometric Jacobian. Rows 1 to 3 are the velocity of the "
           "tool centre point [m/rad], rows 4 to 6 the angular velocity [rad/rad], both in the "
           "base frame; column j is joint j's.")
      .def("singularities", &SingularitiesOf, py::arg("joints"), py::kw_only(), threads, progress,
           "How far joints are from where the arm loses a direction: a dict of arrays, wrist and "
           "elbow [rad], shoulder [m], smallest_singular_value of the Jacobian. The first three "
           "are NaN for arms that have no such places.")
      .def("branch", &BranchOfJoints, py::arg("joints"),
           "The branch of six joints, such as 'shoulder front, elbow up, no wrist flip'; None for "
           "arms whose branches have no names.");
}

}  // namespace qal::python
