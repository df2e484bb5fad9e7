#include <kinematics/ikfunc.h>
#include <qal/solve/kinematics.h>

#include <cmath>

// Solves a pose for the joints it came from: with the solver that the loader finds, and by value.
int main() {
  RoadPoint point;
  const double joints[6] = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6};
  for (int j = 0; j < 6; ++j) point.jointpos[j] = joints[j];
  if (!Ikfunc::ArmFk(point)) return 1;
  double reference[6] = {0.11, 0.21, 0.31, 0.41, 0.51, 0.61};
  if (!Ikfunc::ArmIk(point, reference) || !point.ik_flag) return 2;
  for (int j = 0; j < 6; ++j) {
    // The pose has a quaternion of single precision.
    if (!(std::fabs(point.jointpos[j] - joints[j]) < 1e-5)) return 3;
  }
  const qal::Arm arm = qal::Arm::Reference();
  const qal::Joints near = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6};
  const qal::Result<qal::State> state = qal::Nearest(arm, *qal::Forward(arm, near), near);
  return state && std::fabs(state->joints[5] - near[5]) < 1e-12 ? 0 : 4;
}
