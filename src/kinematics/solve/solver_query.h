#ifndef QAL_KINEMATICS_SOLVE_SOLVER_QUERY_H_
#define QAL_KINEMATICS_SOLVE_SOLVER_QUERY_H_

#include "../../core/roadpoint.h"
#include "context.h"
#include "pose_encoding.h"

namespace qal {

/// Encodes a waypoint's pose; see `Ikfunc::CountEerotEetrans`.
inline void EncodePose(const RoadPoint& point, double* eerot, double* eetrans) {
  const Pos& p = point.position;
  const Ori& q = point.orientation;
  EncodePose({p.x, p.y, p.z}, {q.w, q.x, q.y, q.z}, eerot, eetrans);
}

/// Encodes `target`'s pose and queries the solver for its solutions.
/// @param solutions appended to. A fallback queries again with the same list: the solver adds
///                  nothing when it finds nothing.
/// @return whether the solver found any
inline bool QuerySolver(const Context& arm, const RoadPoint& target, SolutionList& solutions) {
  double eerot[9];
  double eetrans[3];
  EncodePose(target, eerot, eetrans);
  return arm.solver.Inverse(eetrans, eerot, solutions);
}

}  // namespace qal

#endif  // QAL_KINEMATICS_SOLVE_SOLVER_QUERY_H_
