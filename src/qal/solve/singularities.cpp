#include <algorithm>
#include <cmath>
#include <limits>

#include "kinematics.h"
#include "posture.h"
#include "solver_calls.h"

namespace qal {

namespace {

// One-sided Jacobi: columns are rotated in pairs until all are at right angles; their lengths are
// then the singular values, the small ones to as many digits as the large. M. R. Hestenes,
// "Inversion of matrices by biorthogonalization and related results", J. SIAM 6 (1958), 51-90.
double SmallestSingularValue(const JacobianMatrix& jacobian) {
  constexpr int kMostSweeps = 30;        // a 6 by 6 matrix takes 5 to 8
  constexpr double kRightAngle = 1e-15;  // the cosine that rounding leaves
  double column[6][6];
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j) column[j][i] = jacobian.element[i][j];
  }
  const auto dot = [&](int a, int b) {
    double sum = 0;
    for (int i = 0; i < 6; ++i) sum += column[a][i] * column[b][i];
    return sum;
  };
  bool rotated = true;
  for (int sweep = 0; sweep < kMostSweeps && rotated; ++sweep) {
    rotated = false;
    for (int a = 0; a < 5; ++a) {
      for (int b = a + 1; b < 6; ++b) {
        const double aa = dot(a, a);
        const double bb = dot(b, b);
        const double ab = dot(a, b);
        if (!(std::fabs(ab) > kRightAngle * std::sqrt(aa * bb))) continue;
        rotated = true;
        // The rotation after which the two are at right angles, by the smaller angle.
        const double zeta = (bb - aa) / (2 * ab);
        const double t = std::copysign(1.0, zeta) / (std::fabs(zeta) + std::hypot(1.0, zeta));
        const double cosine = 1 / std::hypot(1.0, t);
        const double sine = cosine * t;
        for (int i = 0; i < 6; ++i) {
          const double from_a = column[a][i];
          column[a][i] = cosine * from_a - sine * column[b][i];
          column[b][i] = sine * from_a + cosine * column[b][i];
        }
      }
    }
  }
  double smallest = std::numeric_limits<double>::infinity();
  for (int j = 0; j < 6; ++j) smallest = std::min(smallest, std::sqrt(dot(j, j)));
  return smallest;
}

// Of directions taken as lines: the angle of two that are turned by this.
double AsLines(double turn_rad) {
  const double turned = std::fabs(turn_rad);
  return turned > kPi / 2 ? kPi - turned : turned;
}

}  // namespace

Result<Singularities> DistanceToSingularities(const Arm& arm, const Joints& joints) {
  const Result<Frame> tool = CallForward(arm, joints);
  if (!tool) return tool.error();
  const Result<JacobianMatrix> jacobian = Jacobian(arm, joints);
  if (!jacobian) return jacobian.error();
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  Singularities result = {kNone, kNone, kNone, SmallestSingularValue(*jacobian)};
  if (const auto posture = PostureOf(*jacobian, tool->position)) {
    result.wrist_rad = AsLines(posture->wrist_rad);
    result.elbow_rad = AsLines(posture->elbow_rad);
    result.shoulder_m = std::fabs(posture->shoulder_m);
  }
  return result;
}

}  // namespace qal
