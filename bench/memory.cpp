#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "case.h"

// Counts what the library and the solver allocate: all of it comes through the operators below.

namespace {

size_t allocations = 0;
size_t live_bytes = 0;  // as malloc rounds them up
size_t peak_bytes = 0;

}  // namespace

void* operator new(size_t size) {
  void* block = std::malloc(size);
  if (block == nullptr) throw std::bad_alloc();
  ++allocations;
  live_bytes += malloc_usable_size(block);
  peak_bytes = std::max(peak_bytes, live_bytes);
  return block;
}
void* operator new[](size_t size) { return operator new(size); }
void operator delete(void* block) noexcept {
  live_bytes -= malloc_usable_size(block);
  std::free(block);
}
void operator delete[](void* block) noexcept { operator delete(block); }
void operator delete(void* block, size_t) noexcept { operator delete(block); }
void operator delete[](void* block, size_t) noexcept { operator delete(block); }

namespace qal::bench {
namespace {

constexpr size_t kPoses = 500;

// A line of JSON for each case: allocations in a run, and the most bytes held at a time.
int Measure() {
  const Workload work = MakeWorkload(kPoses);
  Cases cases;
  AddKinematics(work, cases);
  AddMoves(cases);
  AddScaling(cases);
  for (const Case& one : cases) {
    allocations = 0;
    const size_t before = live_bytes;
    peak_bytes = before;
    if (one.run() != one.items) return 1;
    std::printf("{\"name\": \"%s\", \"items\": %zu, \"allocations\": %zu, \"peak_bytes\": %zu}\n",
                one.name.c_str(), one.items, allocations, peak_bytes - before);
  }
  return 0;
}

}  // namespace
}  // namespace qal::bench

int main() { return qal::bench::Measure(); }
