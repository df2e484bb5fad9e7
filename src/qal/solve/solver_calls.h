#ifndef QAL_SOLVE_SOLVER_CALLS_H_
#define QAL_SOLVE_SOLVER_CALLS_H_

#include "../model/arm.h"
#include "../model/frames.h"

// Internal: the calls of an arm's solver, with its answers checked and its exceptions caught.
namespace qal {

/// The tool frame of six joints [rad], as the solver gives it.
/// @return kNotFinite, kNoPose, kSolverFault when the matrix is no rotation, kSolverThrows
Result<Frame> CallForward(const Arm& arm, const Joints& joints);

}  // namespace qal

#endif  // QAL_SOLVE_SOLVER_CALLS_H_
