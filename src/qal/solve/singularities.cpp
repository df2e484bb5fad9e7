#include <algorithm>
#include <cmath>
#include <limits>

#include "../model/family.h"
#include "../model/lines.h"
#include "kinematics.h"
#include "solver_calls.h"

namespace qal {

namespace {

// Two axes that may each be as far from the nearest member of a family as that takes.
constexpr double kParallelRad = 2 * kFamilyAngleToleranceRad;
constexpr double kMeetingM = 2 * kFamilyDistanceToleranceM;

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

bool Parallel(const Line& a, const Line& b) {
  return AngleBetween(a.direction, b.direction) <= kParallelRad;
}

}  // namespace

Result<Singularities> DistanceToSingularities(const Arm& arm, const Joints& joints) {
  const Result<Frame> tool = CallForward(arm, joints);
  if (!tool) return tool.error();
  const Result<JacobianMatrix> jacobian = Jacobian(arm, joints);
  if (!jacobian) return jacobian.error();
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  Singularities result = {kNone, kNone, kNone, SmallestSingularValue(*jacobian)};
  Line axis[6];
  for (size_t j = 0; j < 6; ++j) axis[j] = AxisOf(*jacobian, j, tool->position);
  if (!Parallel(axis[1], axis[2]) || Parallel(axis[0], axis[1]) || Parallel(axis[4], axis[5])) {
    return result;
  }
  // In either family the wrist's centre is where axes 5 and 6 meet; the forearm ends there, or on a
  // third parallel axis.
  const Vector3 centre = MeetingOf(axis[4], axis[5]).point;
  const bool three_parallel = Parallel(axis[2], axis[3]);
  if (!three_parallel && !(DistanceFrom(axis[3], centre) <= kMeetingM)) return result;
  // The links as axis 2 sees them: without what goes along it.
  const auto across = [&](const Vector3& v) {
    return v - Dot(v, axis[1].direction) * axis[1].direction;
  };
  const Vector3 upper_arm = across(axis[2].point - axis[1].point);
  const Vector3 forearm = across((three_parallel ? axis[3].point : centre) - axis[2].point);
  const Vector3 normal = Cross(axis[0].direction, axis[1].direction);
  result.wrist_rad = AngleBetween(axis[3].direction, axis[5].direction);
  result.elbow_rad = AngleBetween(upper_arm, forearm);
  result.shoulder_m = std::fabs(Dot(centre - axis[0].point, normal)) / Length(normal);
  return result;
}

}  // namespace qal
