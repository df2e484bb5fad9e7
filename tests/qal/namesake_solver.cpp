#include "kinematics/array_solver.h"

// A solver whose own class is exported, with the name of a class that the test program has as well.
// Its poses show which of the two answers. It has another solver's array as well, as a library
// has that needs this other one.

struct SolverOfJoint1 {
  static double Offset();
  virtual ~SolverOfJoint1() = default;
  virtual double Joint1(double x) const { return x - Offset(); }
};

// Weak, as an inline function's copies are.
__attribute__((weak)) double SolverOfJoint1::Offset() { return 0.25; }

namespace ikfast {

bool ComputeIk(const IkReal* eetrans, const IkReal* /*eerot*/, const IkReal* /*pfree*/,
               IkSolutionListBase<IkReal>& solutions) {
  std::vector<IkSingleDOFSolutionBase<IkReal>> joints(6);
  joints[0].foffset = SolverOfJoint1().Joint1(eetrans[0]);
  (void)solutions.AddSolution(joints, {});
  return true;
}

void ComputeFk(const IkReal* joints, IkReal* eetrans, IkReal* eerot) {
  eetrans[0] = joints[0] + SolverOfJoint1::Offset();
  eetrans[1] = eetrans[2] = 0;
  for (int i = 0; i < 9; ++i) eerot[i] = i % 4 == 0 ? 1.0 : 0.0;
}

}  // namespace ikfast

const qal::ArraySolver* qal_array_solver_1() {
  static const qal::ArraySolver kOther = {
      [](const double*, const double*, const double*, ikfast::IkSolutionListBase<double>&) {
        return false;
      },
      [](const double*, const double*, double(*)[6]) { return 0; }};
  return &kOther;
}
