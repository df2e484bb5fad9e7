#ifndef QAL_MODEL_MOUNTED_SOLVER_H_
#define QAL_MODEL_MOUNTED_SOLVER_H_

#include "../../kinematics/solve/solver_functions.h"
#include "frames.h"
#include "solver.h"

// Internal: a solver between a base frame and a tool frame.
namespace qal {

/// Poses are the tool frame's in the frame that the arm's base is given in:
/// base * (the solver's tip in its base) * tool.
class MountedSolver final : public SolverFunctions {
 public:
  MountedSolver(const Solver& solver, const Transform& base, const Transform& tool)
      : solver_(solver),
        base_(ToFrame(base)),
        tool_(ToFrame(tool)),
        base_inverse_(qal::Inverse(base_)),
        tool_inverse_(qal::Inverse(tool_)) {}

  bool Inverse(const double* eetrans, const double* eerot, SolutionList& solutions) const override {
    double tip_position[3];
    double tip_rotation[9];
    Write(base_inverse_ * ToFrame(eetrans, eerot) * tool_inverse_, tip_position, tip_rotation);
    return solver_.functions().Inverse(tip_position, tip_rotation, solutions);
  }

  void Forward(const double* joints, double* eetrans, double* eerot) const override {
    double tip_position[3];
    double tip_rotation[9];
    solver_.functions().Forward(joints, tip_position, tip_rotation);
    Write(base_ * ToFrame(tip_position, tip_rotation) * tool_, eetrans, eerot);
  }

 private:
  static void Write(const Frame& frame, double* position, double* rotation) {
    for (int i = 0; i < 3; ++i) {
      position[i] = frame.position[i];
      for (int j = 0; j < 3; ++j) rotation[3 * i + j] = frame.rotation[i][j];
    }
  }

  Solver solver_;
  Frame base_, tool_;
  Frame base_inverse_, tool_inverse_;
};

}  // namespace qal

#endif  // QAL_MODEL_MOUNTED_SOLVER_H_
