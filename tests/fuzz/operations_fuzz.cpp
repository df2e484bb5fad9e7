#include <iterator>
#include <stdexcept>

#include "robustness/operations.h"

// Calls an operation of one group twice, as the bytes say: what it leaves has to be as documented,
// and the same both times.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const auto group = [] {
    std::vector<Operation> chosen;
    std::copy_if(Operations().begin(), Operations().end(), std::back_inserter(chosen),
                 [](const Operation& operation) { return operation.group == QAL_FUZZ_GROUP; });
    return chosen;
  }();
  if (size == 0) return 0;
  constexpr int kMostQueries = 100;
  const Operation& operation = group[data[0] % group.size()];
  const Bytes bytes(data + 1, data + size);
  const Frame once = Perform(operation, bytes, kMostQueries);
  if (!once.fault.empty()) throw std::logic_error(once.fault);
  if (!SameFrames(once, Perform(operation, bytes, kMostQueries))) {
    throw std::logic_error(operation.name + ": not the same twice");
  }
  return 0;
}
