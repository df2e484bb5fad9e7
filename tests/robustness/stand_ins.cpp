#include "stand_ins.h"

#include <dlfcn.h>

#include <cstdlib>
#include <new>

#include "kinematics/ikfast.h"

thread_local ByteSolver byte_solver{};
thread_local Allocations allocations{};

void* operator new(size_t size, const std::nothrow_t& /*none*/) noexcept {
  ++allocations.live;
  return std::malloc(size);
}

void* operator new(size_t size) {
  constexpr size_t kMost = size_t{64} << 20;
  const bool fail = ++allocations.made == allocations.fail_at;
  if (fail) allocations.fail_at = 0;
  if (fail || size > kMost) throw std::bad_alloc();
  return operator new(size + (size == 0), std::nothrow);
}

void operator delete(void* memory) noexcept {
  if (memory != nullptr) --allocations.live;
  std::free(memory);
}

void operator delete(void* memory, size_t /*size*/) noexcept { operator delete(memory); }
// These too, or a sanitizer has its own.
void* operator new[](size_t size) { return operator new(size); }
void operator delete[](void* memory) noexcept { operator delete(memory); }
void operator delete[](void* memory, size_t /*size*/) noexcept { operator delete(memory); }

namespace {

using Vector = std::vector<ikfast::IkSingleDOFSolutionBase<double>>;

// Counts the query, and draws what kind of answer it gets.
int Kind() {
  if (byte_solver.queries_left-- <= 0) throw SolverFault();
  const int kind = byte_solver.bytes->Take<uint8_t>() % 16;
  if (kind == 15) throw SolverFault();
  return kind;
}

// libik.so's own function.
template <typename Function>
Function* Own(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

void Give(const Vector& joints, bool free, ikfast::IkSolutionListBase<double>& solutions) {
  (void)solutions.AddSolution(joints, std::vector<int>(free));
  if (joints.size() != 6) return;
  auto& given = byte_solver.given.emplace_back();
  for (size_t j = 0; j < 6; ++j) given[j] = joints[j].foffset;
}

bool Answer(const double* eetrans, int kind, ikfast::IkSolutionListBase<double>& solutions) {
  constexpr size_t kOddSizes[] = {0, 1, 5, 7};
  if (kind >= 12) return kind == 12;  // an empty success, or nothing
  Vector joints(6);
  for (size_t i = 0; i < 3; ++i) joints[i].foffset = eetrans[i];
  if (kind < 8) Give(joints, false, solutions);
  for (int left = kind < 8 ? 0 : byte_solver.bytes->Take<uint8_t>() % 12; left > 0; --left) {
    const auto shape = byte_solver.bytes->Take<uint8_t>();
    joints.resize(shape < 240 ? 6 : kOddSizes[shape % 4]);
    for (auto& joint : joints) joint.foffset = byte_solver.bytes->Number();
    for (int times = 0; times <= shape % 3; ++times) Give(joints, shape % 32 == 31, solutions);
    if (kind == 10 && shape % 8 == 0) (void)solutions.GetSolution(0);
    if (kind == 11 && shape % 8 == 0) solutions.Clear();
  }
  return kind != 8;  // a solver may break its promise to add nothing then
}

}  // namespace

namespace ikfast {

bool ComputeIk(const IkReal* eetrans, const IkReal* eerot, const IkReal* pfree,
               IkSolutionListBase<IkReal>& solutions) {
  static auto* const own =
      Own<decltype(ComputeIk)>("_ZN6ikfast9ComputeIkEPKdS1_S1_RNS_18IkSolutionListBaseIdEE");
  const int kind = Kind();
  return byte_solver.reference_arm ? own(eetrans, eerot, pfree, solutions)
                                   : Answer(eetrans, kind, solutions);
}

void ComputeFk(const IkReal* joints, IkReal* eetrans, IkReal* eerot) {
  static auto* const own = Own<decltype(ComputeFk)>("_ZN6ikfast9ComputeFkEPKdPdS2_");
  const int kind = Kind();
  if (byte_solver.reference_arm) return own(joints, eetrans, eerot);
  const Vector scratch(static_cast<size_t>(kind));  // this too may run out of memory
  for (int i = 0; i < 9; ++i) eerot[i] = kind < 12 ? i % 4 == 0 : byte_solver.bytes->Number();
  for (int i = 0; i < 3; ++i) eetrans[i] = kind < 14 ? joints[i] : byte_solver.bytes->Number();
}

}  // namespace ikfast
