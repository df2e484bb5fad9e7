#ifndef QAL_SOLVER_CLOSED_FORM_WIDEST_H_
#define QAL_SOLVER_CLOSED_FORM_WIDEST_H_

#include "lanes.h"

/// The same code for two, four or eight lanes, as many as the processor takes at once. Every
/// x86-64 and aarch64 takes two; AVX2 four, and AVX-512 eight.
namespace qal::closed_form {

#ifdef __x86_64__
/// What glibc knows of the processor (`sys/platform/x86.h`, which not every compiler takes), by
/// leaves of the CPUID instruction. An older one, or another C library, has no such function.
struct ProcessorFeatures {
  unsigned present[4];
  unsigned active[4];  ///< what programs can use
};
extern "C" const ProcessorFeatures* QalProcessorFeatures(unsigned leaf) __asm__(
    "__x86_get_cpuid_feature_leaf") __attribute__((weak));
#endif

/// How many: what the C library says, which can be told to hide what the processor has
/// (GLIBC_TUNABLES). Where it says nothing, two.
inline int FindWidestLanes() {
#ifdef __x86_64__
  if (&QalProcessorFeatures == nullptr) return 2;
  constexpr unsigned kAvx2 = 1U << 5;
  constexpr unsigned kAvx512 = 1U << 16 | 1U << 17 | 1U << 31;  // F, DQ and VL
  const unsigned has = QalProcessorFeatures(1)->active[1];      // of leaf 7: EBX
  if ((has & kAvx2) != 0) return (has & kAvx512) == kAvx512 ? 8 : 4;
#endif
  return 2;
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
