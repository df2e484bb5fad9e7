#include <benchmark/benchmark.h>
#include <valgrind/callgrind.h>

#include <cstdio>
#include <string>
#include <string_view>

#include "case.h"

// Two uses: times every case with Google Benchmark and its options, or, with --once, runs each
// once over a small workload and says whether it did what it should; with --once=lanes those alone
// that make use of wide lanes. Under callgrind it dumps the instruction count of every case of
// ours.

namespace qal::bench {
namespace {

constexpr size_t kTimedPoses = 10000;
constexpr size_t kCountedPoses = 500;

Cases AllCases(const Workload& work) {
  Cases cases;
  AddKinematics(work, cases);
  AddTrajectories(work, cases);
  AddLines(work, cases);
  AddLanes(work, cases);
  AddArms(cases);
  AddMoves(cases);
  AddPlayback(cases);
  AddScaling(cases);
  AddPeer(work, cases);
  return cases;
}

Cases CasesInLanes(const Workload& work) {
  Cases cases;
  AddKinematics(work, cases);
  AddLanes(work, cases);
  return cases;
}

int RunOnce(bool lanes_alone) {
  const Workload work = MakeWorkload(kCountedPoses);
  int failures = 0;
  for (const Case& one : lanes_alone ? CasesInLanes(work) : AllCases(work)) {
    if (one.kind == Kind::kScaling && one.items > 10000) continue;
    const bool counted = one.kind == Kind::kOurs;
    if (counted) (void)one.run();  // so that what happens at the first call only isn't counted
    const std::string trigger = one.name + '/' + std::to_string(one.items);
    if (counted) CALLGRIND_TOGGLE_COLLECT;
    const size_t done = one.run();
    if (counted) {
      CALLGRIND_TOGGLE_COLLECT;
      CALLGRIND_DUMP_STATS_AT(trigger.c_str());
    }
    if (done != one.items) {
      std::printf("%s: %zu of %zu came out right\n", one.name.c_str(), done, one.items);
      ++failures;
    }
  }
  return failures == 0 ? 0 : 1;
}

void Time(benchmark::State& state, const Case& one) {
  for (auto _ : state) {
    if (one.run() != one.items) {
      state.SkipWithError("not every operation came out right");
      break;
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(one.items));
}

int TimeAll(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  const Workload work = MakeWorkload(kTimedPoses);
  const Cases cases = AllCases(work);
  for (const Case& one : cases) {
    auto* timed = benchmark::RegisterBenchmark(
        one.name.c_str(), [&one](benchmark::State& state) { Time(state, one); });
    if (one.kind == Kind::kThreads) timed->ThreadRange(1, 2)->UseRealTime();
    if (one.kind == Kind::kBatches) timed->UseRealTime();
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

}  // namespace
}  // namespace qal::bench

int main(int argc, char** argv) {
  const std::string_view once = argc == 2 ? argv[1] : "";
  if (once == "--once" || once == "--once=lanes") return qal::bench::RunOnce(once != "--once");
  return qal::bench::TimeAll(argc, argv);
}
