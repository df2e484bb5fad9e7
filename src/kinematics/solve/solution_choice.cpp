#include "solution_choice.h"

#include <algorithm>

namespace qal {

bool WriteNearest(const SolutionList& solutions, const double* reference, double step_bound,
                  const JointRange (&ranges)[kJointCount], RoadPoint& point) {
  double nearest[kJointCount];
  bool found = false;
  double nearest_distance = 0.0;  // also the mark of "none yet", as every caller counts on
  solutions.ForEach([&](const double* joints) {
    const Judgement judgement = Judge(joints, reference, step_bound, ranges);
    if (judgement.refusal != Refusal::kNone) return;
    if (nearest_distance == 0.0 || judgement.distance < nearest_distance) {
      found = true;
      nearest_distance = judgement.distance;
      std::copy(joints, joints + kJointCount, nearest);
    }
  });
  if (!found) return false;
  std::copy(nearest, nearest + kJointCount, point.jointpos);
  point.ik_flag = true;
  return true;
}

void NudgeTowardsZero(double* joints) {
  constexpr double kNudgeRad = 1e-5;
  for (int j = 0; j < kJointCount; ++j) {
    // NaN is not above 0 and takes the addition.
    joints[j] = joints[j] > 0.0 ? joints[j] - kNudgeRad : joints[j] + kNudgeRad;
  }
}

}  // namespace qal
