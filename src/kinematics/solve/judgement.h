#ifndef QAL_KINEMATICS_SOLVE_JUDGEMENT_H_
#define QAL_KINEMATICS_SOLVE_JUDGEMENT_H_

#include <cmath>
#include <limits>

#include "../../core/joint_count.h"

namespace qal {

/// A step bound that admits any move.
constexpr double kNoStepBound = std::numeric_limits<double>::infinity();

/// Where a joint may stand [rad], both ends included.
struct JointRange {
  double lower, upper;
};

enum class Refusal { kNone, kJointRange, kStepBound };

/// What became of one solution.
struct Judgement {
  Refusal refusal;  ///< why it is not admissible
  int joint;        ///< the joint that refuses it, from 0; kJointCount when admissible
  double distance;  ///< sum of absolute joint differences up to that joint [rad]
};

/// Judges six joints, joint by joint, against its range and then the bound on the move from
/// `reference`. A NaN joint is not refused.
inline Judgement Judge(const double* solution, const double* reference, double step_bound,
                       const JointRange (&ranges)[kJointCount]) {
  double distance = 0.0;
  for (int j = 0; j < kJointCount; ++j) {
    if (solution[j] < ranges[j].lower || solution[j] > ranges[j].upper) {
      return {Refusal::kJointRange, j, distance};
    }
    const double move = std::fabs(solution[j] - reference[j]);
    if (move > step_bound) return {Refusal::kStepBound, j, distance};
    distance += move;
  }
  return {Refusal::kNone, kJointCount, distance};
}

}  // namespace qal

#endif  // QAL_KINEMATICS_SOLVE_JUDGEMENT_H_
