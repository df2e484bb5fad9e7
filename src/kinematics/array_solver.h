#ifndef QAL_KINEMATICS_ARRAY_SOLVER_H_
#define QAL_KINEMATICS_ARRAY_SOLVER_H_

#include "ikfast.h"

// Internal: what our own solver libraries export besides the interface.

namespace qal {

/// A solver library's solutions without a list, which takes about as long to fill as to be solved.
struct ArraySolver {
  /// As many solutions as six joints may have of a pose.
  static constexpr size_t kMost = 16;

  decltype(&ikfast::ComputeIk) compute_ik;  ///< the library's own
  /// The solutions of that function, in its order.
  /// @param joints out: room for `kMost`, each six joints [rad]; what isn't used may be overwritten
  /// @return how many there are
  int (*inverse)(const double* eetrans, const double* eerot, double (*joints)[6]);
};

/// What a library's `qal_array_solver_1` says.
/// @param library    that function; null: there is none
/// @param compute_ik what would be called otherwise: a program may have brought another one, or a
///                   library another library
/// @return null where there is none, or another one's
inline const ArraySolver* ArraySolverOf(const ArraySolver* (*library)(),
                                        decltype(&ikfast::ComputeIk) compute_ik) {
  const ArraySolver* const solver = library != nullptr ? library() : nullptr;
  return solver != nullptr && solver->compute_ik == compute_ik ? solver : nullptr;
}

}  // namespace qal

/// Exported under this name for as long as `qal::ArraySolver` is as it is.
extern "C" [[gnu::visibility("default")]] const qal::ArraySolver* qal_array_solver_1();

#endif  // QAL_KINEMATICS_ARRAY_SOLVER_H_
