#ifndef QAL_TOOLS_QAL_SOLVER_CHECK_H_
#define QAL_TOOLS_QAL_SOLVER_CHECK_H_

#include <string>

namespace qal::tools {

/// The solver library that the loader has found.
std::string SolverPath();

/// Asks the solver, as far as it has the functions for it, whether it is one for an arm of six
/// joints. Asked for the pose of another arm, it would go past the six values that it is given.
/// @throw UsageError as `BlameSolver`
void CheckSolver();

/// @throw UsageError "PATH: the solver FAULT; ikcheck PATH tells more"
[[noreturn]] void BlameSolver(const std::string& fault);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_SOLVER_CHECK_H_
