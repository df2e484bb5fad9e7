#include "arm.h"
#include "errors.h"
#include "motion.h"
#include "poses.h"
#include "reach.h"
#include "trajectory.h"

// The compiled part of the package: all of it but the exceptions and the pictures.
PYBIND11_MODULE(_core, module) {
  using namespace qal::python;  // NOLINT(google-build-using-namespace)
  module.attr("__version__") = QAL_VERSION;
  AddErrors(module);
  AddPose(module);
  auto arm = AddArm(module);
  AddSolving(module, arm);
  AddExplaining(arm);
  AddTrajectory(module);
  AddMotion(module, arm);
  AddReach(module);
}
