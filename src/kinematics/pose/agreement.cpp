#include "agreement.h"

#include "../../core/joint_count.h"

namespace qal {

namespace {

// The difference is judged in single precision, as the tolerance is. Only a strictly greater one
// fails, so a NaN coordinate passes.
bool Within(double a, double b, float tolerance) {
  const float difference = static_cast<float>(a - b);
  return !(std::fabs(difference) > tolerance);
}

}  // namespace

bool PosesAgree(const RoadPoint& a, const RoadPoint& b, float position_m, float component) {
  const Pos& p1 = a.position;
  const Pos& p2 = b.position;
  const Ori& q1 = a.orientation;
  const Ori& q2 = b.orientation;
  return Within(p1.x, p2.x, position_m) && Within(p1.y, p2.y, position_m) &&
         Within(p1.z, p2.z, position_m) && Within(q1.w, q2.w, component) &&
         Within(q1.x, q2.x, component) && Within(q1.y, q2.y, component) &&
         Within(q1.z, q2.z, component);
}

bool JointsAgree(const double* a, const double* b, float joint_rad) {
  for (int j = 0; j < kJointCount; ++j) {
    if (!Within(a[j], b[j], joint_rad)) return false;
  }
  return true;
}

bool JointsAgreeToHalfADegree(const double* a, const double* b) {
  // As the arm's controller rounds it [rad].
  constexpr double kHalfADegreeRad = 0.00872664;
  for (int j = 0; j < kJointCount; ++j) {
    if (std::fabs(a[j] - b[j]) > kHalfADegreeRad) return false;
  }
  return true;
}

}  // namespace qal
