#include "ikfast.h"

// A solver built elsewhere: compiled with its own copy of the interface header, without a linker
// map, so that its instantiations of the containers are exported. A gantry with two solutions.

namespace ikfast {

bool ComputeIk(const IkReal* eetrans, const IkReal* /*eerot*/, const IkReal* /*pfree*/,
               IkSolutionListBase<IkReal>& solutions) {
  solutions.Clear();  // as generated solvers do
  for (const double wrist : {2.0, 1.0}) {
    std::vector<IkSingleDOFSolutionBase<IkReal>> joints(6);
    for (size_t j = 0; j < 6; ++j) joints[j].foffset = j < 3 ? eetrans[j] : wrist;
    const IkSolution<IkReal> own(joints, {});  // its copy of everything is in use
    own.Validate();
    (void)solutions.AddSolution(own._vbasesol, own.GetFree());
  }
  return solutions.GetNumSolutions() > 0;
}

void ComputeFk(const IkReal* joints, IkReal* eetrans, IkReal* eerot) {
  for (int i = 0; i < 3; ++i) eetrans[i] = joints[i];
  for (int i = 0; i < 9; ++i) eerot[i] = i % 4 == 0 ? 1.0 : 0.0;
}

}  // namespace ikfast
