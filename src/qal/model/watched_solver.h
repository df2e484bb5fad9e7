#ifndef QAL_MODEL_WATCHED_SOLVER_H_
#define QAL_MODEL_WATCHED_SOLVER_H_

#include <functional>
#include <memory>
#include <utility>

#include "../../kinematics/solve/solver_functions.h"
#include "exceptions.h"
#include "solver.h"

// Internal: a solver that gives up when it is told to.
namespace qal {

class WatchedSolver final : public SolverFunctions {
 public:
  WatchedSolver(std::shared_ptr<const SolverFunctions> solver, std::function<bool()> go_on)
      : solver_(std::move(solver)), go_on_(std::move(go_on)) {}

  bool Inverse(const double* eetrans, const double* eerot, SolutionList& solutions) const override {
    if (!go_on_()) throw Interrupted{};
    return solver_->Inverse(eetrans, eerot, solutions);
  }

  void Forward(const double* joints, double* eetrans, double* eerot) const override {
    if (!go_on_()) throw Interrupted{};
    solver_->Forward(joints, eetrans, eerot);
  }

  const std::function<bool()>& go_on() const { return go_on_; }

 private:
  std::shared_ptr<const SolverFunctions> solver_;
  std::function<bool()> go_on_;
};

/// What a solver's watch asks, for work that takes long without the solver; none: nobody watches.
inline std::function<bool()> WatchOf(const Solver& solver) {
  const auto* const watched = dynamic_cast<const WatchedSolver*>(&solver.functions());
  return watched == nullptr ? nullptr : watched->go_on();
}

}  // namespace qal

#endif  // QAL_MODEL_WATCHED_SOLVER_H_
