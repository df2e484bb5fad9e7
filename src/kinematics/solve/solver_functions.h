#ifndef QAL_KINEMATICS_SOLVE_SOLVER_FUNCTIONS_H_
#define QAL_KINEMATICS_SOLVE_SOLVER_FUNCTIONS_H_

#include "solution_list.h"

namespace qal {

class BlockFunctions;

/// The two functions of a solver, as `ikfast.h` defines them. Whose they are (those that the loader
/// has found, those of a library opened at run time, a closed form of our own) is said once, where
/// an object of a derived class is made.
class SolverFunctions {
 public:
  /// @param eetrans 3 coordinates; @param eerot 9 elements by rows
  /// @param solutions appended to; nothing may be appended when the result is false
  virtual bool Inverse(const double* eetrans, const double* eerot,
                       SolutionList& solutions) const = 0;
  virtual void Forward(const double* joints, double* eetrans, double* eerot) const = 0;
  /// The same for many targets and joint sets at once; null where there is nothing to be gained.
  virtual const BlockFunctions* Blocks() const { return nullptr; }

 protected:
  constexpr SolverFunctions() = default;
  ~SolverFunctions() = default;
  SolverFunctions(const SolverFunctions&) = default;
  SolverFunctions& operator=(const SolverFunctions&) = default;
};

}  // namespace qal

#endif  // QAL_KINEMATICS_SOLVE_SOLVER_FUNCTIONS_H_
