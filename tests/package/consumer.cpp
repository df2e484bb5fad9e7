#include <kinematics/ikfunc.h>

#include <cmath>

// Solves a pose for the joints it came from, with the solver that the loader finds.
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
  return 0;
}
