#include "motion.h"

#include <fmt/format.h>
#include <qal/plan/sampled.h>
#include <qal/solve/kinematics.h>

#include "../../io/plan_text.h"
#include "../../io/program_file.h"
#include "class.h"
#include "errors.h"
#include "interruptible.h"
#include "poses.h"
#include "requests.h"
#include "trajectory.h"

namespace qal::python {

namespace {

const char* KindOf(const PyMotion& self) {
  constexpr const char* kKinds[] = {"joint move", "line", "program"};
  return kKinds[self.motion.index()];
}

py::tuple AsNumbers(const LimitScale& scale) {
  return py::make_tuple(scale.velocity, scale.acceleration, scale.jerk);
}

PyMotion PlanJointMove(const py::object& self, const py::object& start, const py::object& to,
                       const py::object& scale, double duration) {
  const Arm& arm = self.cast<const PyArm&>().arm();
  const Joints from = ReadJoints(start, "start");
  const Joints end = py::isinstance<Poses>(to)
                         ? OrRaise(Nearest(arm, to.cast<const Poses&>().One("to"), from)).joints
                         : ReadJoints(to, "to");
  const JointLimits limits = {ReadScale(scale), duration};
  return {arm,
          py::make_tuple(
              self, "plan_joint", py::make_tuple(ToArray(from), ToArray(end)),
              py::dict(py::arg("scale") = AsNumbers(limits.scale), py::arg("duration") = duration)),
          OrRaise(Interruptible(arm,
                                [&](const Arm& watched) {
                                  return PlanJoint(watched, {from}, {end}, limits);
                                }),
                  "move")};
}

PyMotion PlanStraight(const py::object& self, const Joints& from, const Pose& end,
                      const LineLimits& limits) {
  const Arm& arm = self.cast<const PyArm&>().arm();
  const py::dict named(
      py::arg("speed") = limits.speed_m_s, py::arg("acceleration") = limits.acceleration_m_s2,
      py::arg("jerk") = limits.jerk_m_s3, py::arg("turn_speed") = limits.turn_speed_rad_s,
      py::arg("turn_acceleration") = limits.turn_acceleration_rad_s2,
      py::arg("turn_jerk") = limits.turn_jerk_rad_s3, py::arg("scale") = AsNumbers(limits.scale),
      py::arg("max_orientation_error") = limits.max_orientation_error_rad);
  auto planned = Interruptible(arm, [&](const Arm& watched) {
    return PlanLine(watched, {from, end}, end, limits);
  });
  return {arm, py::make_tuple(self, "plan_line", py::make_tuple(ToArray(from), Poses(end)), named),
          OrRaise(std::move(planned), "line")};
}

PyMotion PlanWhole(const py::object& self, const py::object& program, const py::object& progress) {
  const Arm& arm = self.cast<const PyArm&>().arm();
  const auto [file, source] = ReadProgramOf(arm, program);
  size_t told = 0;
  const auto tell = [&](size_t steps) {
    if (progress.is_none() || steps <= told) return;
    const py::gil_scoped_acquire locked;
    progress(steps - told);
    told = steps;
  };
  auto planned = Interruptible(arm, [&tell, &program = file.program](const Arm& watched) {
    return PlanProgram(watched, program, tell);
  });
  if (planned) {
    return {arm, py::make_tuple(self, "plan_program", py::make_tuple(source), py::dict()),
            *std::move(planned)};
  }
  const auto& [failure, step] = planned.error();
  Raise(failure, StepName(file.program.steps[step]), file.Place(step) + ": ");
}

PyMotion PlannedAgain(const py::tuple& source) {
  return source[0]
      .attr(source[1])(*source[2].cast<py::tuple>(), **source[3].cast<py::dict>())
      .cast<PyMotion>();
}

PyTrajectory SamplesOf(const PyMotion& self) {
  return Planned(OrRaise(Unlocked([&] {
                           return std::visit(
                               [&](const auto& motion) { return Sampled(self.arm, motion); },
                               self.motion);
                         }),
                         "motion"));
}

// The motion at some times.
py::dict StatesAt(const PyMotion& self, const py::object& times) {
  const auto given = ReadNumbers(times, "time");
  if (given.ndim() > 1) {
    throw py::value_error("time: a number or shape (n,) is expected, not " + ShapeText(given));
  }
  const bool single = given.ndim() == 0;
  const auto count = static_cast<size_t>(given.size());
  py::array_t<double> parts[3];
  for (auto& part : parts) part = MakeRows(count, 6, single);
  for (size_t i = 0; i < count; ++i) {
    const double time_s = given.data()[i];
    const MotionState state =
        std::visit([time_s](const auto& motion) { return motion.At(time_s); }, self.motion);
    std::copy_n(state.joints.data(), 6, parts[0].mutable_data() + 6 * i);
    std::copy_n(state.velocities.data(), 6, parts[1].mutable_data() + 6 * i);
    std::copy_n(state.accelerations.data(), 6, parts[2].mutable_data() + 6 * i);
  }
  py::dict states;
  states["joints"] = parts[0];
  states["velocities"] = parts[1];
  states["accelerations"] = parts[2];
  return states;
}

py::list BindingsOf(const PyMotion& self) {
  py::list told;
  for (const Binding& binding :
       std::visit([](const auto& motion) { return motion.bindings(); }, self.motion)) {
    py::dict entry;
    entry["limit"] = io::BindingText(binding);
    entry["share"] = binding.share;
    entry["begin"] = binding.begin_s;
    entry["end"] = binding.end_s;
    told.append(entry);
  }
  return told;
}

py::list CornersOf(const PyMotion& self) {
  py::list told;
  for (const RoundedCorner& corner : self.Program().corners()) {
    py::dict entry;
    entry["step"] = corner.step;
    entry["begin"] = corner.begin_s;
    entry["end"] = corner.end_s;
    entry["radius"] = corner.radius_m;
    entry["turn"] = corner.turn_rad;
    entry["deviation"] = corner.deviation_m;
    told.append(entry);
  }
  return told;
}

}  // namespace

double PyMotion::duration_s() const {
  return std::visit([](const auto& m) { return m.duration_s(); }, motion);
}

const ProgramMotion& PyMotion::Program() const {
  const auto* const program = std::get_if<ProgramMotion>(&motion);
  if (program == nullptr) throw py::type_error("the motion of a program is expected");
  return *program;
}

void AddMotion(py::module_& module, py::class_<PyArm>& arm) {
  auto motion =
      NewClass<PyMotion>(module, "Motion",
                         "A planned motion: of a joint move, a line, or a program. Immutable. A "
                         "pickle holds the request, which is planned again, to the same bits.");
  motion.def_property_readonly("duration", &PyMotion::duration_s, "How long it takes [s].")
      .def_property_readonly("kind", &KindOf, "'joint move', 'line' or 'program'.")
      .def("at", &StatesAt, py::arg("time"),
           "joints [rad], velocities [rad/s] and accelerations [rad/s^2] at a time, or at many "
           "[s]: a dict of arrays of shape (6,) or (n, 6). Before the motion its start, after it "
           "its end.")
      .def("trajectory", &SamplesOf,
           "Trajectory: samples as a controller plays them, one of the arm's cycles apart.")
      .def_property_readonly("bindings", &BindingsOf,
                             "The limits that it runs at, the longest first: for each a dict of "
                             "limit, share of the duration, begin and end [s].")
      .def_property_readonly(
          "step_begins", [](const PyMotion& self) { return self.Program().step_begins_s(); },
          "Of a program: when each step begins [s].")
      .def_property_readonly("corners", &CornersOf,
                             "Of a program: its rounded corners, for each a dict of step (from "
                             "0), begin and end [s], radius and deviation [m], turn [rad].")
      .def("__repr__",
           [](const PyMotion& self) {
             return fmt::format("<Motion: {}, {:.6g} s>", KindOf(self), self.duration_s());
           })
      .def("__copy__", [](const PyMotion& self) { return self; })
      .def("__deepcopy__", [](const PyMotion& self, const py::dict&) { return self; })
      .def(py::pickle([](const PyMotion& self) { return self.source.cast<py::tuple>(); },
                      &PlannedAgain));
  AddPlayback(module, motion);

  DefLine(arm, "plan_line", &PlanStraight,
          R"(The quickest straight line of the tool, from rest to rest, within every limit.

Parameters
----------
start : (6,) array_like
    Joints [rad].
to : Pose or (6,) array_like
    The end, or joints that have its pose.
by : (3,) array_like
    In place of `to`: how far [m, base frame], without a turn.
speed, acceleration, jerk : float
    Of the tool centre point at most [m/s, m/s^2, m/s^3].
turn_speed, turn_acceleration, turn_jerk : float
    Of the tool's turn at most [rad/s, rad/s^2, rad/s^3].
scale
    As for `plan_joint`.
max_orientation_error : float
    How far the tool may be turned off the line to pass a wrist singularity [rad].

Returns
-------
Motion

Raises
------
OutOfReachError, JointRangeError, SingularityError
    With `along`, the part of the way that works, and `before_joints`.)");
  arm.def("plan_joint", &PlanJointMove, py::arg("start"), py::arg("to"), py::kw_only(),
          py::arg("scale") = 1.0, py::arg("duration") = 0.0,
          R"(The quickest joint move from rest to rest within every limit of the joints.

Parameters
----------
start : (6,) array_like
    Joints [rad].
to : (6,) array_like or Pose
    Joints [rad], or a pose: the joints nearest the start's.
scale : float or (3,) array_like
    How much of the limits to use, above 0 up to 1: of all, or of velocity, acceleration, jerk.
duration : float
    It takes at least this long [s].

Returns
-------
Motion

Raises
------
JointRangeError
    An end lies outside of a joint's range.
OutOfReachError
    The end's pose has no joints.)")

      .def("plan_program", &PlanWhole, py::arg("program"), py::kw_only(),
           py::arg("progress") = py::none(),
           R"(The motion of a program: joint moves, lines and arcs, with zones.

Parameters
----------
program : str, os.PathLike or dict
    A file in TOML or JSON, or what such a file holds.
progress : callable, optional
    Called with how many more steps are planned, like tqdm's `update`.

Returns
-------
Motion

Raises
------
FileError
    With the line, and what was expected.
OutOfReachError, JointRangeError, SingularityError
    The text names the step; with `along`, the part of its way that works, and `before_joints`.)");
}

}  // namespace qal::python
