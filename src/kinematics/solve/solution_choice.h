#ifndef QAL_KINEMATICS_SOLVE_SOLUTION_CHOICE_H_
#define QAL_KINEMATICS_SOLVE_SOLUTION_CHOICE_H_

#include <limits>

#include "../../core/roadpoint.h"
#include "solver_query.h"

namespace qal {

/// A step bound that admits any move.
constexpr double kNoStepBound = std::numeric_limits<double>::infinity();

enum class Refusal { kNone, kJointRange, kStepBound };

/// What became of one solution.
struct Judgement {
  Refusal refusal;  ///< why it is not admissible
  int joint;        ///< the joint that refuses it, from 0; kJointCount when admissible
  double distance;  ///< sum of absolute joint differences up to that joint [rad]
};

/// Judges six joints against the admissible range and, joint by joint, the bound on the move from
/// `reference`. A NaN joint is not refused.
Judgement Judge(const double* solution, const double* reference, double step_bound);

/// Finds the admissible solution nearest `reference`.
/// @param nearest out, on success only: its 6 joints [rad]; must not overlap `reference`
/// @return false when there is none
bool FindNearest(const SolutionList& solutions, const double* reference, double step_bound,
                 double* nearest);

/// Finds the nearest admissible solution and writes it to `point`, `ik_flag` included.
/// @param point     out: untouched when there is none
/// @param reference 6 joints [rad]; may be `point.jointpos`
bool WriteNearest(const SolutionList& solutions, const double* reference, double step_bound,
                  RoadPoint& point);

/// Moves each of 6 joints by 1e-5 rad towards zero; one at exactly 0 moves up.
void NudgeTowardsZero(double* joints);

}  // namespace qal

#endif  // QAL_KINEMATICS_SOLVE_SOLUTION_CHOICE_H_
