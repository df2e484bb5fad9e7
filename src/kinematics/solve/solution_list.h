#ifndef QAL_KINEMATICS_SOLVE_SOLUTION_LIST_H_
#define QAL_KINEMATICS_SOLVE_SOLUTION_LIST_H_

#include <cstddef>
#include <memory>
#include <vector>

#include "../../core/joint_count.h"
#include "../array_solver.h"
#include "../ikfast.h"

namespace qal {

/// The list that a solver fills for this library. To the solver it is an ordinary
/// `ikfast::IkSolutionList`; but where that one allocates twice for a solution, which is a quarter
/// of the time of a query, this one keeps the first solutions inside itself.
///
/// It keeps only what every pose brings: solutions of six joints without a free one, as many as an
/// arm with a spherical wrist has. With the first that is none of these, and when a solution is
/// asked for by its index, all move to the inherited list and stay there.
///
/// A solver of ours writes joints to an array instead, which comes to stand first; a solver library
/// never sees a list that has any.
class SolutionList final : public ikfast::IkSolutionList<ikfast::IkReal> {
  using Base = ikfast::IkSolutionList<ikfast::IkReal>;
  using Joint = ikfast::IkSingleDOFSolutionBase<ikfast::IkReal>;

 public:
  // The storage is left as it is: to clear it would cost more than to fill it.
  SolutionList() {}  // NOLINT(modernize-use-equals-default)
  SolutionList(const SolutionList&) = delete;
  SolutionList& operator=(const SolutionList&) = delete;

  size_t AddSolution(const std::vector<Joint>& vinfos, const std::vector<int>& vfree) override {
    if (vinfos.size() == size_t{kJointCount} && vfree.empty() && kept_count_ < kMostKept &&
        _listsolutions.empty()) {
      std::uninitialized_copy_n(vinfos.begin(), kJointCount, kept_[kept_count_]);
      return kept_count_++;
    }
    MoveToList();
    return Base::AddSolution(vinfos, vfree);
  }

  const ikfast::IkSolutionBase<ikfast::IkReal>& GetSolution(size_t index) const override {
    // What the list holds doesn't change, only where.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
    const_cast<SolutionList*>(this)->MoveToList();
    return Base::GetSolution(index);
  }

  size_t GetNumSolutions() const override { return kept_count_ + _listsolutions.size(); }

  void Clear() override {
    array_count_ = 0;
    kept_count_ = 0;
    Base::Clear();
  }

  /// Has `solve(array)` write solutions, each six joints [rad], to an array of
  /// `ArraySolver::kMost` and return how many there are.
  /// @return whether there are any
  template <typename Solve>
  bool TakeArray(Solve solve) {
    array_count_ = solve(array_);
    return array_count_ > 0;
  }

  /// Calls visit(joints) with the six joints [rad] of each solution, in the solver's order. Passes
  /// over solutions that don't have six joints.
  template <typename Visit>
  void ForEach(Visit visit) const {
    for (int i = 0; i < array_count_; ++i) visit(array_[i]);
    double joints[kJointCount] = {};
    for (size_t i = 0; i < kept_count_; ++i) {
      for (int j = 0; j < kJointCount; ++j) joints[j] = kept_[i][j].foffset;
      visit(joints);
    }
    for (const ikfast::IkSolution<ikfast::IkReal>& solution : _listsolutions) {
      if (solution.GetDOF() != kJointCount) continue;
      solution.GetSolution(joints, nullptr);
      visit(joints);
    }
  }

 private:
  static constexpr size_t kMostKept = 8;

  void MoveToList() {
    for (size_t i = 0; i < kept_count_; ++i) {
      _listsolutions.emplace_back(std::vector<Joint>(kept_[i], kept_[i] + kJointCount),
                                  std::vector<int>());
    }
    kept_count_ = 0;
  }

  size_t kept_count_ = 0;
  int array_count_ = 0;
  union {
    Joint kept_[kMostKept][kJointCount];
  };
  double array_[ArraySolver::kMost][kJointCount];
};

}  // namespace qal

#endif  // QAL_KINEMATICS_SOLVE_SOLUTION_LIST_H_
