#ifndef QAL_MODEL_SOLVER_LIBRARY_H_
#define QAL_MODEL_SOLVER_LIBRARY_H_

#include <optional>
#include <string>

#include "../../kinematics/solve/solver_functions.h"
#include "error.h"

// Internal: a solver library that is opened at run time.
namespace qal {

/// Holds a library open.
class SolverLibrary final : public SolverFunctions {
 public:
  /// @param path with a slash
  explicit SolverLibrary(const std::string& path);
  ~SolverLibrary();
  SolverLibrary(const SolverLibrary&) = delete;
  SolverLibrary& operator=(const SolverLibrary&) = delete;

  /// What keeps it from being a solver of six joints; nothing when it is one. Calls what the
  /// library says of itself, which may throw.
  std::optional<Error> Refusal() const;

  /// What the library calls its geometry; empty when it doesn't.
  std::string GeometryHash() const;

  bool Inverse(const double* eetrans, const double* eerot, SolutionList& solutions) const override;
  void Forward(const double* joints, double* eetrans, double* eerot) const override;

 private:
  using ComputeIk = decltype(&ikfast::ComputeIk);
  using ComputeFk = decltype(&ikfast::ComputeFk);

  // The address of ikfast::NAME, which takes no argument; null where there is none.
  template <class Function>
  Function Query(const char* name) const;

  void* library_;
  std::string load_error_;
  ComputeIk compute_ik_ = nullptr;
  ComputeFk compute_fk_ = nullptr;
  const ArraySolver* array_ = nullptr;  // where there is one
};

}  // namespace qal

#endif  // QAL_MODEL_SOLVER_LIBRARY_H_
