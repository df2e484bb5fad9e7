#ifndef QAL_TOOLS_IKCHECK_SOLVER_H_
#define QAL_TOOLS_IKCHECK_SOLVER_H_

#include <Eigen/Core>
#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "../../src/kinematics/ikfast.h"

namespace qal::ikcheck {

using Joints = std::array<double, 6>;  ///< [rad]

using Rotation = Eigen::Matrix<double, 3, 3, Eigen::RowMajor>;

/// A tool pose in the arm's base frame, as the solver takes and gives it.
struct Pose {
  Eigen::Vector3d position = Eigen::Vector3d::Zero();  ///< [the solver's length unit]
  Rotation rotation = Rotation::Zero();                ///< tool frame to base frame
};

/// What any call of a solver may come to. kEndless: it would not stop adding solutions.
struct CallEnd {
  enum class Outcome { kReturned, kThrew, kEndless };
  Outcome outcome = Outcome::kReturned;
  std::string what = {};       ///< what was thrown
  bool wrote_outside = false;  ///< beside its results, or over its arguments
  bool returned() const { return outcome == Outcome::kReturned; }
};

/// What one call of ComputeFk did. Of the pose NaN is left where nothing was written.
struct FkAnswer : CallEnd {
  Pose pose = {};
};

struct Solution {
  Joints joints;  ///< as they are read without free values
  bool free;      ///< depends on a free parameter all the same
};

/// What one call of ComputeIk did.
struct IkAnswer : CallEnd {
  bool found = false;    ///< what it returned
  bool cleared = false;  ///< it called Clear()
  size_t added = 0;      ///< entries that it has added to those it left standing
  /// Bytes of a solution's joint vector that weren't six entries of this interface; 0: all were.
  size_t odd_bytes = 0;
  std::vector<Solution> solutions = {};  ///< of those added the ones that can be read
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

  /// Loads a library. That runs its code: in child processes only.
  /// @throw UsageError "cannot load " and the loader's reason
  static Solver Load(const std::string& path);

  /// Never throws what the library throws.
  FkAnswer Forward(const Joints& joints) const;
  /// @param standing empty entries that the list has beforehand
  IkAnswer Solve(const Pose& pose, size_t standing = 0) const;
};

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_SOLVER_H_
