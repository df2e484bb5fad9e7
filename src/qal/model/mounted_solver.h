#ifndef QAL_MODEL_MOUNTED_SOLVER_H_
#define QAL_MODEL_MOUNTED_SOLVER_H_

#include "../../kinematics/solve/solver_functions.h"
#include "block_functions.h"
#include "frames.h"
#include "solver.h"

// Internal: a solver between a base frame and a tool frame.
namespace qal {

/// A block of frames, seen from one and up to another one.
struct MountBlock {
  template <int lanes>
  QAL_INLINED static void Run(const Frame& before, const Frame& after, const FrameBlock& from,
                              FrameBlock& to) {
    using L = closed_form::LanesOf<lanes>;
    for (int i = 0; i < kBlock; i += lanes) {
      StoreFrame(before * closed_form::LoadFrame<L>(from, i) * after, i, to);
    }
  }
};

/// Poses are the tool frame's in the frame that the arm's base is given in:
/// base * (the solver's tip in its base) * tool.
class MountedSolver final : public SolverFunctions, public BlockFunctions {
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

  const BlockFunctions* Blocks() const override {
    return solver_.functions().Blocks() == nullptr ? nullptr : this;
  }

  void InverseBlock(const FrameBlock& targets, WaysBlock& ways) const override {
    FrameBlock tips;
    Mount(base_inverse_, tool_inverse_, targets, tips);
    solver_.functions().Blocks()->InverseBlock(tips, ways);
  }

  void ForwardBlock(const JointsBlock& joints, FrameBlock& frames,
                    BlockFlags& alone) const override {
    FrameBlock tips;
    solver_.functions().Blocks()->ForwardBlock(joints, tips, alone);
    Mount(base_, tool_, tips, frames);
  }

 private:
  static void Mount(const Frame& before, const Frame& after, const FrameBlock& from,
                    FrameBlock& to) {
    closed_form::RunInLanes<MountBlock, kBlock>(closed_form::WidestLanes(), before, after, from,
                                                to);
  }

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
