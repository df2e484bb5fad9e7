#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <new>
#include <stdexcept>
#include <string>

#include "ikfast.h"

// A solver built elsewhere: compiled with a copy of the interface header of its own, without a
// linker map, so that its instantiations of the containers are exported. A gantry with two
// solutions: joints 1 to 3 are the coordinates, 4 to 6 are all 2 or all 1. The environment says
// what is wrong with it.

namespace {

bool Does(const char* fault) {
  const char* const chosen = std::getenv("QAL_FOREIGN_FAULT");
  return chosen != nullptr && chosen == std::string(fault);
}

void Misbehave() {
  if (Does("throws")) throw std::runtime_error("no\nway");
  if (Does("throws an int")) throw 42;
  if (Does("has no memory")) throw std::bad_alloc();
  if (Does("prints")) {
    std::puts("solver by printf");
    std::cout << "solver by stream" << std::endl;
  }
}

}  // namespace

namespace ikfast {

bool ComputeIk(const IkReal* eetrans, const IkReal* /*eerot*/, const IkReal* /*pfree*/,
               IkSolutionListBase<IkReal>& solutions) {
  Misbehave();
  solutions.Clear();  // as generated solvers do
  if (Does("finds nothing and returns true")) return true;
  const size_t count = Does("has four joints") ? 4 : Does("has seven joints") ? 7 : 6;
  for (const double wrist : {2.0, 1.0}) {
    std::vector<IkSingleDOFSolutionBase<IkReal>> joints(count);
    for (size_t j = 0; j < count; ++j) joints[j].foffset = j < 3 ? eetrans[j] : wrist;
    std::vector<int> free;
    if (Does("leaves joint 5 free")) {
      joints[4].fmul = 1;
      joints[4].freeind = 0;
      free.push_back(0);
    }
    const IkSolution<IkReal> own(joints, free);  // its copy of everything is in use
    own.Validate();
    (void)solutions.AddSolution(own._vbasesol, own.GetFree());
  }
  return !Does("finds joints and returns false");
}

#ifndef QAL_WITHOUT_FORWARD
void ComputeFk(const IkReal* joints, IkReal* eetrans, IkReal* eerot) {
  Misbehave();
  for (int i = 0; i < 3; ++i) eetrans[i] = joints[i];
  for (int i = 0; i < 9; ++i) eerot[i] = i % 4 == 0 ? 1.0 : 0.0;
}
#endif

int GetNumJoints() { return Does("is for seven joints") ? 7 : 6; }
int GetNumFreeParameters() { return Does("is for a free joint") ? 1 : 0; }

}  // namespace ikfast
