#ifndef QAL_MODEL_CLOSED_FORM_SOLVER_H_
#define QAL_MODEL_CLOSED_FORM_SOLVER_H_

#include "../../kinematics/solve/solver_functions.h"
#include "block_functions.h"

// Internal: a closed form with geometry that is known at run time only.
namespace qal {

/// Answers as the solver library of this geometry does, to the last bit.
/// @tparam Geometry an arm of solver/closed_form
template <class Geometry>
class GeometrySolver : public SolverFunctions {
 public:
  explicit GeometrySolver(const Geometry& geometry) : geometry_(geometry) {}

  bool Inverse(const double* eetrans, const double* eerot, SolutionList& solutions) const override {
    static_assert(closed_form::Solutions::kMost <= ArraySolver::kMost);
    return solutions.TakeArray([&](double(*joints)[6]) {
      return WriteSolutions(SolveTarget(&geometry_, eetrans, eerot), joints);
    });
  }

  void Forward(const double* joints, double* eetrans, double* eerot) const override {
    WriteToolFrame(geometry_, joints, eetrans, eerot);
  }

 protected:
  ~GeometrySolver() = default;
  GeometrySolver(const GeometrySolver&) = default;
  GeometrySolver& operator=(const GeometrySolver&) = default;

  Geometry geometry_;
};

template <class Geometry>
class ClosedFormSolver final : public GeometrySolver<Geometry> {
 public:
  using GeometrySolver<Geometry>::GeometrySolver;
};

/// One of a family whose solutions are branches, which are solved a pose in each lane.
template <class Geometry>
class BranchesSolver final : public GeometrySolver<Geometry>, public BlockFunctions {
 public:
  using GeometrySolver<Geometry>::GeometrySolver;

  const BlockFunctions* Blocks() const override { return this; }

  void InverseBlock(const FrameBlock& targets, WaysBlock& ways) const override {
    closed_form::RunInLanes<closed_form::SolveBlock, kBlock>(closed_form::WidestLanes(),
                                                             this->geometry_, targets, ways);
  }
  void ForwardBlock(const JointsBlock& joints, FrameBlock& frames,
                    BlockFlags& alone) const override {
    closed_form::RunInLanes<closed_form::ForwardBlock, kBlock>(
        closed_form::WidestLanes(), this->geometry_, joints, frames, alone);
  }
};

/// The solver of a geometry.
template <class Geometry>
using SolverOf = std::conditional_t<closed_form::kBranchesOut<Geometry>, BranchesSolver<Geometry>,
                                    ClosedFormSolver<Geometry>>;

}  // namespace qal

#endif  // QAL_MODEL_CLOSED_FORM_SOLVER_H_
