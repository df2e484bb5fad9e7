#include <fmt/format.h>
#include <qal/plan/playback.h>

#include "class.h"
#include "errors.h"
#include "interruptible.h"
#include "motion.h"
#include "trajectory.h"

namespace qal::python {

namespace {

py::tuple StopOf(const PyMotion& self, double at) {
  const Stopped stopped =
      OrRaise(Unlocked([&program = self.Program(), at] { return Stop(program, at); }), "stop");
  return py::make_tuple(Planned(stopped.trajectory), stopped.planned_s);
}

PyTrajectory ResumedAt(const PyMotion& self, double planned) {
  return Planned(
      OrRaise(Unlocked([&program = self.Program(), planned] { return Resume(program, planned); }),
              "motion"));
}

PyTrajectory OverrideOf(const PyMotion& self, const py::function& factor) {
  const auto locked_factor = [&factor](double time_s) {
    const py::gil_scoped_acquire locked;
    return factor(time_s).cast<double>();
  };
  return Planned(OrRaise(Unlocked([&locked_factor, &program = self.Program()] {
                           return Override(program, locked_factor);
                         }),
                         "motion"));
}

py::dict NextOf(Playback& self) {
  const Sample sample = self.Next();
  py::dict told;
  told["time"] = sample.time_s;
  told["joints"] = ToArray(sample.joints);
  told["velocities"] = ToArray(sample.velocities);
  told["accelerations"] = ToArray(sample.accelerations);
  return told;
}

}  // namespace

void AddPlayback(py::module_& module, py::class_<PyMotion>& motion) {
  motion
      .def("stop", &StopOf, py::arg("at"),
           "Of a program, from a time [s] on: to rest along the path, as soon as the limits "
           "allow. A Trajectory, and the time of the plan [s] at which it stands.")
      .def("resume", &ResumedAt, py::arg("planned"),
           "Of a program, from rest where it was stopped: a Trajectory.")
      .def("override", &OverrideOf, py::arg("factor"),
           "Of a program: all of it, at the part of the planned speed that `factor(time)` says, "
           "from 0 to 1, asked once a cycle. A Trajectory.");
  NewClass<Playback>(module, "Playback",
                     R"(Plays a program's motion cycle by cycle, and takes a stop, a resume and an
override while it does: always on the planned path and within the limits it was planned for.

Parameters
----------
motion : Motion
    Of a program.
start : float
    Where to begin [s], in motion as planned at that time.)")
      .def(py::init([](const PyMotion& played, double start) {
             return Playback(played.Program(), start);
           }),
           py::arg("motion"), py::arg("start") = 0.0)
      .def_static(
          "from_rest",
          [](const PyMotion& played, double planned) {
            return Playback::FromRest(played.Program(), planned);
          },
          py::arg("motion"), py::arg("planned"),
          "From rest at the place where a motion was stopped: its `planned` [s].")
      .def("next", &NextOf,
           "The next cycle's set point, the first one where it begins: a dict of time [s], joints "
           "[rad], velocities [rad/s] and accelerations [rad/s^2], arrays of shape (6,).")
      .def("stop", &Playback::Stop, "From now on: to rest, as soon as the limits allow it.")
      .def("resume", &Playback::Resume,
           "From now on: to the speed of the last override, the planned one if there was none.")
      .def("override", &Playback::Override, py::arg("factor"),
           "From now on: at this part of the planned speed, from 0 to 1; 0 is a stop.")
      .def_property_readonly("at_rest", &Playback::at_rest, "Whether the arm stands still.")
      .def_property_readonly("done", &Playback::done, "Whether it stands at the end for good.")
      .def_property_readonly("planned", &Playback::planned_s,
                             "Where the motion is: at this time [s] it would be there as planned.")
      .def("__repr__", [](const Playback& self) {
        return fmt::format("<Playback at {:.6g} s of the plan>", self.planned_s());
      });
}

}  // namespace qal::python
