#ifndef QAL_MODEL_SOLVER_H_
#define QAL_MODEL_SOLVER_H_

/// @file
/// Solvers of arms: closed forms, and anybody's library.

#include <functional>
#include <memory>
#include <string>

#include "../../core/export.h"
#include "description.h"
#include "result.h"

namespace qal {

class SolverFunctions;

/// Which arm a solver is of, where an arm is only near a family.
enum class Geometry {
  kDescribed,  ///< the arm as it is described, to the last digit
  kNominal,    ///< the family's member that is nearest to it
};

/// An arm's closed-form solver: forward kinematics, and all joints of a pose. A value, cheap to
/// copy; any number of them live side by side in a process.
class QAL_API Solver {
 public:
  /// Opens a solver library with the IKFast interface privately: its names are seen by nobody else,
  /// and it sees its own before the host's, so that neither another solver nor the host (which may
  /// define `ikfast::ComputeIk` itself) is disturbed or disturbs it.
  /// @param path a name without a slash is taken from the current folder, not searched for
  /// @return the solver; kLibraryNotLoaded, kFunctionMissing, kNotSixJoints, kFreeParameters or
  ///         kSolverType when it is none of six joints; kSolverFault when its numbers are no
  ///         doubles; kSolverThrows
  static Result<Solver> Load(const std::string& path);

  /// The solver of the family that the arm's axes belong to or are near (`FamilyReport`). Near
  /// a family each solution of the nearest member is made exact on the described arm, by Newton's
  /// method to 1e-13; solutions that only one of the two has are found or left out as the described
  /// arm has it, but within 1e-10 of the rim of the workspace. Any other arm has its poses solved
  /// by continuation, from one whose solutions are found here, in some 10 ms. No compiler is
  /// needed.
  /// @param description the arm
  /// @param geometry    solved is the arm as described, or its nominal geometry
  /// @return the solver; kSingularEverywhere; kNoFamily where the nominal geometry is wanted
  static Result<Solver> ClosedForm(const ArmDescription& description,
                                   Geometry geometry = Geometry::kDescribed);

  /// The reference arm's.
  static Solver Reference();

  /// The same solver, which asks before each answer whether to go on; see `Arm::Watched`.
  Solver Watched(std::function<bool()> go_on) const;

  /// The kind of arm, as `FamilyName` has it; "libik.so" for a loaded one.
  const std::string& family() const;
  /// What identifies the geometry; empty where a loaded solver has no `GetKinematicsHash`.
  const std::string& hash() const;
  /// Absolute path of a loaded library; empty for the others.
  const std::string& path() const;

  /// For this library's own layers.
  const SolverFunctions& functions() const;

 private:
  struct Held;
  explicit Solver(std::shared_ptr<const Held> held) : held_(std::move(held)) {}
  std::shared_ptr<const Held> held_;
};

}  // namespace qal

#endif  // QAL_MODEL_SOLVER_H_
