#ifndef QAL_TESTS_ROBUSTNESS_STAND_INS_H_
#define QAL_TESTS_ROBUSTNESS_STAND_INS_H_

#include <array>

#include "byte_input.h"

// What takes the place of libik.so and of the standard library's memory. An executable that links
// stand_ins.cpp exports ikfast::ComputeIk, ikfast::ComputeFk, operator new and delete itself, so
// that the library binds to these.

/// What the solver throws when it has been called too often, or its bytes tell it to.
struct SolverFault {};

/// This thread's solver. It answers as its bytes say: with any number of solutions of any number of
/// joints, some of them again and again, with an empty success, with a pose that isn't finite. It
/// may look into the list, or clear it. When the bytes have run out, it is a gantry: joints 1 to 3
/// are the coordinates.
struct ByteSolver {
  ByteInput* bytes;
  int queries_left;
  bool reference_arm;                        ///< answers as libik.so's own instead
  std::vector<std::array<double, 6>> given;  ///< every solution of six joints
};
extern thread_local ByteSolver byte_solver;

/// This thread's allocations. One of more than 64 MB always fails.
struct Allocations {
  long live;     ///< allocated and not freed
  long made;     ///< allocated so far
  long fail_at;  ///< the one that fails, counted by `made`; 0: none, or it has
};
extern thread_local Allocations allocations;

#endif  // QAL_TESTS_ROBUSTNESS_STAND_INS_H_
