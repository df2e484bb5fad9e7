#include "solver_check.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include "../../io/error.h"
#include "../../src/kinematics/ikfast.h"

namespace qal::tools {

using namespace io;

namespace {

// What a function of the solver answers; `otherwise` when it has none of that name. By name, since
// a solver needs no more than ComputeIk and ComputeFk.
int Answer(const char* mangled, int otherwise) {
  void* const function = ::dlsym(RTLD_DEFAULT, mangled);
  if (function == nullptr) return otherwise;
  return reinterpret_cast<int (*)()>(function)();  // NOLINT(*-reinterpret-cast): dlsym's contract
}

}  // namespace

std::string SolverPath() {
  Dl_info found;
  // NOLINTNEXTLINE(*-reinterpret-cast): dladdr's contract
  const auto* const address = reinterpret_cast<const void*>(&ikfast::ComputeIk);
  return ::dladdr(address, &found) != 0 ? found.dli_fname : "libik.so";
}

void CheckSolver() {
  const int joints = Answer("_ZN6ikfast12GetNumJointsEv", 6);
  if (joints != 6) BlameSolver(fmt::format("has {} joints, 6 are expected", joints));
  if (Answer("_ZN6ikfast20GetNumFreeParametersEv", 0) != 0) {
    BlameSolver("has free parameters, none is expected");
  }
}

void BlameSolver(const std::string& fault) {
  const std::string path = SolverPath();
  throw UsageError(fmt::format("{}: the solver {}; ikcheck {} tells more", path, fault, path));
}

}  // namespace qal::tools
