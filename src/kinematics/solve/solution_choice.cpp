#include "solution_choice.h"

#include <algorithm>
#include <cmath>

#include "../arm_constants.h"

namespace qal {

Judgement Judge(const double* solution, const double* reference, double step_bound) {
  double distance = 0.0;
  for (int j = 0; j < kJointCount; ++j) {
    if (solution[j] < -kJointRangeRad || solution[j] > kJointRangeRad) {
      return {Refusal::kJointRange, j, distance};
    }
    const double move = std::fabs(solution[j] - reference[j]);
    if (move > step_bound) return {Refusal::kStepBound, j, distance};
    distance += move;
  }
  return {Refusal::kNone, kJointCount, distance};
}

bool FindNearest(const SolutionList& solutions, const double* reference, double step_bound,
                 double* nearest) {
  bool found = false;
  double nearest_distance = 0.0;  // also the mark of "none yet", as every caller counts on
  solutions.ForEach([&](const double* joints) {
    const Judgement judgement = Judge(joints, reference, step_bound);
    if (judgement.refusal != Refusal::kNone) return;
    if (nearest_distance == 0.0 || judgement.distance < nearest_distance) {
      found = true;
      nearest_distance = judgement.distance;
      std::copy(joints, joints + kJointCount, nearest);
    }
  });
  return found;
}

bool WriteNearest(const SolutionList& solutions, const double* reference, double step_bound,
                  RoadPoint& point) {
  double nearest[kJointCount];
  if (!FindNearest(solutions, reference, step_bound, nearest)) return false;
  std::copy(nearest, nearest + kJointCount, point.jointpos);
  point.ik_flag = true;
  return true;
}

void NudgeTowardsZero(double* joints) {
  for (int j = 0; j < kJointCount; ++j) {
    // NaN is not above 0 and takes the addition.
    joints[j] = joints[j] > 0.0 ? joints[j] - kNudgeRad : joints[j] + kNudgeRad;
  }
}

}  // namespace qal
