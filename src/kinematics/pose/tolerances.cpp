#include <cmath>

#include "../arm_constants.h"
#include "../ikfunc.h"

namespace {

// Half a degree, as the arm's controller rounds it [rad].
constexpr double kSameAngleRad = 0.00872664;

// The difference is judged in single precision, as the tolerance is. Only a strictly greater one
// fails, so a NaN coordinate passes.
bool Within(double a, double b, float tolerance) {
  const float difference = static_cast<float>(a - b);
  return !(std::fabs(difference) > tolerance);
}

}  // namespace

bool Ikfunc::PointAngTest(double* a, double* b) {
  for (int i = 0; i < qal::kJointCount; ++i) {
    if (std::fabs(a[i] - b[i]) > kSameAngleRad) return false;
  }
  return true;
}

bool Ikfunc::PositionCompare(RoadPoint roadpoint1, RoadPoint roadpoint2, float pos_range,
                             float ori_range) {
  const Pos& p1 = roadpoint1.position;
  const Pos& p2 = roadpoint2.position;
  const Ori& q1 = roadpoint1.orientation;
  const Ori& q2 = roadpoint2.orientation;
  return Within(p1.x, p2.x, pos_range) && Within(p1.y, p2.y, pos_range) &&
         Within(p1.z, p2.z, pos_range) && Within(q1.w, q2.w, ori_range) &&
         Within(q1.x, q2.x, ori_range) && Within(q1.y, q2.y, ori_range) &&
         Within(q1.z, q2.z, ori_range);
}

bool Ikfunc::JointCompare(RoadPoint roadpoint1, RoadPoint roadpoint2, float joint_range) {
  for (int i = 0; i < qal::kJointCount; ++i) {
    if (!Within(roadpoint1.jointpos[i], roadpoint2.jointpos[i], joint_range)) return false;
  }
  return true;
}
