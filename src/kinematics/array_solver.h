#ifndef QAL_KINEMATICS_ARRAY_SOLVER_H_
#define QAL_KINEMATICS_ARRAY_SOLVER_H_

#include "ikfast.h"

// Internal: what our own solver libraries export besides the interface.

namespace qal {

/// A solver library's solutions without a list, which takes as long to fill as they to be found.
/// Whoever uses it makes sure that the ComputeIk that he would call is this library's: a program
/// may have brought another one.
struct ArraySolver {
  /// As many solutions as six joints may have of a pose.
  static constexpr int kMost = 16;

  decltype(&ikfast::ComputeIk) compute_ik;  ///< the library's own
  /// The solutions of that function, in its order.
  /// @param joints out: room for `kMost`, each six joints [rad]; what isn't used may be overwritten
  /// @return how many there are
  int (*inverse)(const double* eetrans, const double* eerot, double (*joints)[6]);
};

}  // namespace qal

/// Exported under this name for as long as `qal::ArraySolver` is as it is.
extern "C" [[gnu::visibility("default")]] const qal::ArraySolver* qal_array_solver_1();

#endif  // QAL_KINEMATICS_ARRAY_SOLVER_H_
