#ifndef QAL_SOLVER_CLOSED_FORM_WIDEST_H_
#define QAL_SOLVER_CLOSED_FORM_WIDEST_H_

#ifdef __x86_64__
#include <cpuid.h>

#include <cstdlib>
#include <cstring>
#endif

#include "lanes.h"

/// The same code for two, four or eight lanes, as many as the processor takes at once. Every
/// x86-64 and aarch64 takes two; AVX2 four, and AVX-512 eight.
namespace qal::closed_form {

#ifdef __x86_64__
/// Whether the processor has lanes, the system keeps them from one program to the next, and the
/// user doesn't hide them, as one does from the C library: GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX2.
/// @param features in EBX of leaf 7 of the CPUID instruction
/// @param state    bits of the register XCR0
inline bool HasLanes(unsigned features, unsigned state, const char* hidden_by) {
  unsigned eax = 0;
  unsigned ebx = 0;
  unsigned ecx = 0;
  unsigned edx = 0;
  constexpr unsigned kTellsState = 1U << 27;
  if (__get_cpuid(1, &eax, &ebx, &ecx, &edx) == 0 || (ecx & kTellsState) == 0) return false;
  __asm__("xgetbv" : "=a"(eax), "=d"(edx) : "c"(0));
  if ((eax & state) != state) return false;
  if (__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) == 0) return false;
  const char* const tunables = std::getenv("GLIBC_TUNABLES");  // NOLINT(concurrency-mt-unsafe)
  const bool hidden = tunables != nullptr && std::strstr(tunables, hidden_by) != nullptr;
  return (ebx & features) == features && !hidden;
}
#endif

/// How many there are here.
inline int FindWidestLanes() {
#ifdef __x86_64__
  constexpr unsigned kAvx2 = 1U << 5;
  constexpr unsigned kAvx512 = 1U << 16 | 1U << 17 | 1U << 31;  // F, DQ and VL
  if (!HasLanes(kAvx2, 0x06, "-AVX2")) return 2;
  return HasLanes(kAvx512, 0xe6, "-AVX512F") ? 8 : 4;
#else
  return 2;
#endif
}

/// The same, found at the first call: nothing runs when a library is loaded.
inline int WidestLanes() {
  static const int widest = FindWidestLanes();
  return widest;
}

#ifdef __x86_64__
/// Kernel::Run<count>(arguments), compiled for a processor with that many lanes.
template <class Kernel, class... Arguments>
[[gnu::target("avx2"), gnu::noinline]] void RunInFour(Arguments&... arguments) {
  Kernel::template Run<4>(arguments...);
}
template <class Kernel, class... Arguments>
[[gnu::target("avx2,avx512f,avx512dq,avx512vl"), gnu::noinline]] void RunInEight(
    Arguments&... arguments) {
  Kernel::template Run<8>(arguments...);
}
#endif

/// Calls `Kernel::Run<count>(arguments)` with `lanes` lanes, 2, 4 or 8. `Run` and all that it calls
/// has to be `QAL_INLINED`.
/// @tparam most lanes that the kernel has use for
template <class Kernel, int most, class... Arguments>
inline void RunInLanes(int lanes, Arguments&... arguments) {
#ifdef __x86_64__
  if constexpr (most >= 8) {
    if (lanes >= 8) return RunInEight<Kernel>(arguments...);
  }
  if (lanes >= 4) return RunInFour<Kernel>(arguments...);
#else
  (void)lanes;
#endif
  Kernel::template Run<2>(arguments...);
}

/// An arm whose numbers the compiler knows. Like a pointer to an arm, it is what code takes that
/// makes use of these where they are known.
template <const auto& arm>
struct KnownArm {
  QAL_INLINED constexpr const auto& operator*() const { return arm; }
};

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_WIDEST_H_
