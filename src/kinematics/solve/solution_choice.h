#ifndef QAL_KINEMATICS_SOLVE_SOLUTION_CHOICE_H_
#define QAL_KINEMATICS_SOLVE_SOLUTION_CHOICE_H_

#include "../../core/roadpoint.h"
#include "judgement.h"
#include "solution_list.h"

namespace qal {

/// Finds the admissible solution nearest `reference` and writes it to `point`, `ik_flag` included.
/// A solution at distance 0 doesn't hold against a later admissible one.
/// @param point     out: untouched when there is none
/// @param reference 6 joints [rad]; may be `point.jointpos`
/// @return false when there is none
bool WriteNearest(const SolutionList& solutions, const double* reference, double step_bound,
                  const JointRange (&ranges)[kJointCount], RoadPoint& point);

/// Moves each of 6 joints by 1e-5 rad towards zero; one at exactly 0 moves up.
void NudgeTowardsZero(double* joints);

}  // namespace qal

#endif  // QAL_KINEMATICS_SOLVE_SOLUTION_CHOICE_H_
