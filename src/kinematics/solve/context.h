#ifndef QAL_KINEMATICS_SOLVE_CONTEXT_H_
#define QAL_KINEMATICS_SOLVE_CONTEXT_H_

#include "arm_numbers.h"
#include "observer.h"
#include "solver_functions.h"

namespace qal {

/// The arm that a classic operation works for, and who hears what happens.
struct Context {
  const SolverFunctions& solver;
  const ArmNumbers& numbers;
  const Observer& observer;

  void Tell(Event event) const { observer.Hear({event}); }
};

}  // namespace qal

#endif  // QAL_KINEMATICS_SOLVE_CONTEXT_H_
