#include "arm.h"
#include "errors.h"
#include "motion.h"
#include "poses.h"
#include "trajectory.h"

// The compiled part of the package: all of it but the exceptions and the pictures.
PYBIND11_MODULE(_core, module) {
  using namespace qal::python;  // NOLINT(google-build-using-namespace)
  module.attr("__version__") = QAL_VERSION;
  AddErrors(module);
  AddPose(module);
  auto arm = AddArm(module);
  AddSolving(module, arm);
  AddTrajectory(module);
  AddMotion(module, arm);
  // As users import them, for help() and pickles.
  for (const char* const name : {"Arm", "Motion", "Nearest", "Pose", "Solutions", "Trajectory"}) {
    module.attr(name).attr("__module__") = "qal_kinematics";
  }
}
