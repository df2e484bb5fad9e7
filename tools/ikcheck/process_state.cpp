#include "process_state.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <malloc.h>

#include <cfenv>
#include <clocale>
#include <csignal>
#include <filesystem>
#include <limits>
#include <system_error>

// Of the address sanitizer; not every compiler has its header.
extern "C" __attribute__((weak)) size_t __sanitizer_get_current_allocated_bytes();

namespace qal::ikcheck {

namespace {

void Append(std::string& list, const std::string& name) {
  list += (list.empty() ? "" : ", ") + name;
}

}  // namespace

std::string OddFloatingPointMode() {
  using Limits = std::numeric_limits<double>;
  volatile double normal = Limits::min();
  volatile double denormal = Limits::denorm_min();
  std::string odd;
  if (std::fegetround() != FE_TONEAREST) Append(odd, "rounding");
  // Products, as the comparison of a denormal number may take it for 0, too.
  normal = normal * 0.5 * 2;
  denormal = denormal * 0x1p1000;
  if (normal == 0) Append(odd, "denormal results are 0");
  if (denormal == 0) Append(odd, "denormal operands are 0");
  if (::fegetexcept() != 0) Append(odd, "traps");
  return odd;
}

void ResetFloatingPointMode() { (void)std::fesetenv(FE_DFL_ENV); }

ProcessState CurrentProcessState() {
  ProcessState state;
  std::error_code none;
  state["working directory"] = std::filesystem::current_path(none).string();
  state["locale"] = std::setlocale(LC_ALL, nullptr);
  for (int file = 0; file < 3; ++file) {
    state["standard files"] += ::fcntl(file, F_GETFD) < 0 ? '-' : 'o';
  }
  sigset_t blocked;
  (void)::sigemptyset(&blocked);
  (void)::sigprocmask(SIG_BLOCK, nullptr, &blocked);
  for (int number = 1; number < NSIG; ++number) {
    struct sigaction action = {};
    (void)::sigaction(number, nullptr, &action);
    state["signal handlers"] +=
        fmt::format("{:x} ", reinterpret_cast<std::uintptr_t>(action.sa_handler));
    state["blocked signals"] += ::sigismember(&blocked, number) == 1 ? 'b' : '-';
  }
  return state;
}

std::string Differences(const ProcessState& before, const ProcessState& after) {
  std::string differences;
  for (const auto& [name, value] : before) {
    if (after.at(name) != value) Append(differences, name);
  }
  return differences;
}

size_t HeapBytes() {
  if (__sanitizer_get_current_allocated_bytes != nullptr) {
    return __sanitizer_get_current_allocated_bytes();
  }
  const struct mallinfo2 info = ::mallinfo2();
  return info.uordblks + info.hblkhd;
}

}  // namespace qal::ikcheck
