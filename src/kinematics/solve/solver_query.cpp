#include "solver_query.h"

#include <cmath>

namespace qal {

void EncodePose(const RoadPoint& point, double* eerot, double* eetrans) {
  eetrans[0] = point.position.x;
  eetrans[1] = point.position.y;
  eetrans[2] = point.position.z;

  auto [qw, qx, qy, qz] = point.orientation;
  // A zero quaternion makes this infinite and the matrix NaN.
  const double scale = 1.0 / std::sqrt(qx * qx + qy * qy + qz * qz + qw * qw);
  qw *= scale;
  qx *= scale;
  qy *= scale;
  qz *= scale;
  eerot[0] = 1 - 2 * qy * qy - 2 * qz * qz;
  eerot[1] = 2 * qx * qy - 2 * qz * qw;
  eerot[2] = 2 * qx * qz + 2 * qy * qw;
  eerot[3] = 2 * qx * qy + 2 * qz * qw;
  eerot[4] = 1 - 2 * qx * qx - 2 * qz * qz;
  eerot[5] = 2 * qy * qz - 2 * qx * qw;
  eerot[6] = 2 * qx * qz - 2 * qy * qw;
  eerot[7] = 2 * qy * qz + 2 * qx * qw;
  eerot[8] = 1 - 2 * qx * qx - 2 * qy * qy;
}

bool AskSolver(const RoadPoint& target, SolutionList& solutions) {
  ikfast::IkReal eerot[9];
  ikfast::IkReal eetrans[3];
  EncodePose(target, eerot, eetrans);
  return ikfast::ComputeIk(eetrans, eerot, nullptr, solutions);
}

}  // namespace qal
