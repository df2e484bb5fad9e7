#ifndef QAL_MODEL_CLOSED_FORM_SOLVER_H_
#define QAL_MODEL_CLOSED_FORM_SOLVER_H_

#include "../../../solver/closed_form/solve.h"
#include "../../kinematics/solve/solver_functions.h"

// Internal: a closed form with geometry that is known at run time only.
namespace qal {

/// Answers as the solver library of this geometry does, to the last bit.
/// @tparam Geometry an arm of solver/closed_form
template <class Geometry>
class ClosedFormSolver final : public SolverFunctions {
 public:
  explicit ClosedFormSolver(const Geometry& geometry) : geometry_(geometry) {}

  bool Inverse(const double* eetrans, const double* eerot, SolutionList& solutions) const override {
    const closed_form::Solutions found = SolveTarget(&geometry_, eetrans, eerot);
    for (const closed_form::Joints& joints : found) solutions.AddJoints(joints.data());
    return found.Count() > 0;
  }

  void Forward(const double* joints, double* eetrans, double* eerot) const override {
    WriteToolFrame(geometry_, joints, eetrans, eerot);
  }

 private:
  Geometry geometry_;
};

}  // namespace qal

#endif  // QAL_MODEL_CLOSED_FORM_SOLVER_H_
