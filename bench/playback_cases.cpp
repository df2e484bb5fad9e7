#include <benchmark/benchmark.h>
#include <qal/plan/playback.h>

#include <memory>
#include <vector>

#include "case.h"
#include "seeded_programs.h"

namespace qal::bench {

namespace {

constexpr unsigned kSeed = 20261125;
constexpr size_t kPrograms = 20;

// Programs that are stopped every second, and go on half a second later.
struct Stops {
  Stops() {
    for (unsigned seed = kSeed; motions.size() < kPrograms; ++seed) {
      auto motion = PlanProgram(arm, SeededPrograms(arm, seed).Next().program);
      constexpr double kLeastS = 2;
      constexpr double kMostS = 20;
      if (!motion || motion->duration_s() < kLeastS || motion->duration_s() > kMostS) continue;
      motions.push_back(*std::move(motion));
    }
    cycles = Play();
  }

  // Each to its end; how many cycles that were.
  size_t Play() const {
    size_t played = 0;
    for (const ProgramMotion& motion : motions) {
      Playback playback(motion);
      for (int cycle = 0; !playback.done(); ++cycle, ++played) {
        if (cycle % 200 == 100) playback.Stop();
        if (cycle % 200 == 0) playback.Resume();
        benchmark::DoNotOptimize(playback.Next());
      }
    }
    return played;
  }

  Arm arm = Arm::Reference();
  std::vector<ProgramMotion> motions;
  size_t cycles = 0;
};

}  // namespace

void AddPlayback(Cases& cases) {
  const auto stops = std::make_shared<const Stops>();
  cases.push_back(
      {"play/stop and resume", Kind::kOurs, stops->cycles, [stops] { return stops->Play(); }});
}

}  // namespace qal::bench
