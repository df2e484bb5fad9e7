#ifndef QAL_KINEMATICS_SOLVE_SOLVER_QUERY_H_
#define QAL_KINEMATICS_SOLVE_SOLVER_QUERY_H_

#include "../../core/roadpoint.h"
#include "solution_list.h"

namespace qal {

/// A waypoint's pose as the solver takes it; see `Ikfunc::CountEerotEetrans`.
void EncodePose(const RoadPoint& point, double* eerot, double* eetrans);

/// Encodes `target`'s pose and asks the solver for its solutions.
/// @param solutions appended to. A fallback asks again with the same list: the solver adds nothing
///                  when it finds nothing.
/// @return whether the solver found any
bool AskSolver(const RoadPoint& target, SolutionList& solutions);

}  // namespace qal

#endif  // QAL_KINEMATICS_SOLVE_SOLVER_QUERY_H_
