#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <new>
#include <string>

#include "../../src/kinematics/ikfast.h"

// A solver as no arm should have: it prints, or throws, as the environment says.

namespace ikfast {

namespace {

void Misbehave() {
  const char* set = std::getenv("ODD_SOLVER");
  const std::string odd = set == nullptr ? "" : set;
  if (odd == "prints") {
    std::printf("solver by printf\n");
    std::cout << "solver by stream" << std::endl;
  }
  if (odd == "throws a number") throw 42;
  if (odd == "throws") throw std::runtime_error("two\nlines");
  if (odd == "has no memory") throw std::bad_alloc();
}

}  // namespace

bool ComputeIk(const IkReal*, const IkReal*, const IkReal*, IkSolutionListBase<IkReal>&) {
  Misbehave();
  return false;
}

void ComputeFk(const IkReal*, IkReal* eetrans, IkReal* eerot) {
  Misbehave();
  for (int i = 0; i < 3; ++i) eetrans[i] = 0.0;
  for (int i = 0; i < 9; ++i) eerot[i] = i % 4 == 0 ? 1.0 : 0.0;
}

}  // namespace ikfast
