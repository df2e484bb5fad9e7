#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "../common/sanitized.h"
#include "checks.h"
#include "jacobian.h"

namespace qal::ikcheck {

namespace {

constexpr char kChecker[] = "libc_malloc_debug.so.0";  // comes with the C library

// Before what a variable of the environment says already.
void Prepend(const char* variable, const std::string& value) {
  const char* const rest = std::getenv(variable);
  (void)::setenv(variable, (rest != nullptr ? value + ':' + rest : value).c_str(), 1);
}

}  // namespace

void StartWithHeapChecker(const Options& options, const Exchange& exchange) {
  if (tools::kAddressSanitizer || ::dlopen(kChecker, RTLD_LAZY) == nullptr) return;
  Prepend("LD_PRELOAD", kChecker);
  Prepend("GLIBC_TUNABLES", "glibc.malloc.check=3");
  const std::string file = std::to_string(exchange.file());
  const std::string seed = std::to_string(options.seed);
  (void)::execl("/proc/self/exe", "ikcheck", kHeapOption, file.c_str(), options.library.c_str(),
                seed.c_str(), nullptr);
}

void CheckHeap(Session& session, Row& row) {
  const bool loaded = ::dlopen(kChecker, RTLD_LAZY | RTLD_NOLOAD) != nullptr;
  const std::string checker = tools::kAddressSanitizer ? "the address sanitizer"
                              : loaded                 ? kChecker
                                       : "nothing, for lack of " + std::string(kChecker);
  std::vector<IkRequest> requests = session.RandomPoses(1000);
  for (const Singularity& at : FindSingularities(session, 4)) {
    if (const auto pose = session.Forward(at.joints)) requests.push_back({*pose, at.joints});
  }
  for (const IkRequest& request : requests) (void)session.Solve(request);
  row.values["calls"] = requests.size();
  row.values["checked_by"] = checker;
}

}  // namespace qal::ikcheck
