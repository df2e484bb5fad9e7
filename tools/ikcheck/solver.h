#ifndef QAL_TOOLS_IKCHECK_SOLVER_H_
#define QAL_TOOLS_IKCHECK_SOLVER_H_

#include <array>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>

#include "../../src/kinematics/ikfast.h"

namespace qal::ikcheck {

using Joints = std::array<double, 6>;  ///< [rad]

/// A tool pose in the arm's base frame, as the solver takes and gives it.
struct Pose {
  double position[3];  ///< [the solver's length unit]
  double rotation[9];  ///< row-major, tool frame to base frame
};

/// How a call ended; kEndless: it would not stop adding solutions; kNoPose: what ComputeFk gave for
/// finite joints is no pose, which the session sees.
enum class Outcome { kNotRun = 0, kReturned, kThrew, kEndless, kNoPose };

constexpr size_t kWhatBytes = 80;

/// What one call of ComputeFk did.
struct FkAnswer {
  Outcome outcome;
  char what[kWhatBytes];  ///< what was thrown
  Pose pose;              ///< NaN where nothing was written
};

struct Solution {
  Joints joints;  ///< as they are read without free values
  bool free;      ///< depends on a free parameter all the same
};

/// More solutions than this are counted, not kept. A six-joint arm has 16 at most; at singularities
/// solvers are known to repeat them.
constexpr size_t kKeptSolutions = 64;

/// What one call of ComputeIk did.
struct IkAnswer {
  Outcome outcome;
  char what[kWhatBytes];  ///< what was thrown
  bool found;             ///< what it returned
  bool cleared;           ///< it called Clear()
  size_t added;           ///< entries that it has added to those it left standing
  size_t kept;            ///< entries in `solutions`
  /// Bytes of a solution's joint vector that weren't six entries of this interface; 0: all were.
  size_t odd_bytes;
  Solution solutions[kKeptSolutions];
};

struct LoadError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The functions of one loaded library. Null where there is none.
struct Solver {
  decltype(&ikfast::ComputeIk) compute_ik = nullptr;
  decltype(&ikfast::ComputeFk) compute_fk = nullptr;
  bool plain_names = false;  ///< they are extern "C", which ikfast::ComputeIk doesn't link to

  decltype(&ikfast::GetNumFreeParameters) free_parameters = nullptr;
  decltype(&ikfast::GetNumJoints) joints = nullptr;
  decltype(&ikfast::GetIkRealSize) real_size = nullptr;
  decltype(&ikfast::GetIkFastVersion) version = nullptr;
  decltype(&ikfast::GetIkType) type = nullptr;
  decltype(&ikfast::GetKinematicsHash) hash = nullptr;

  /// Never throws what the library throws.
  void Forward(const Joints& joints, FkAnswer& answer) const;
  /// @param standing empty entries that the list has beforehand
  void Solve(const Pose& pose, size_t standing, IkAnswer& answer) const;
};

/// A library that is loaded when it is first used. That runs its code: in child processes
/// only.
class Library {
 public:
  explicit Library(const std::string& path);
  /// @throw LoadError with the loader's reason
  const Solver& Get();

 private:
  std::string path_;
  std::optional<Solver> solver_;
};

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_SOLVER_H_
