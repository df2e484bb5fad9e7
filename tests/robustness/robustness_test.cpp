#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <random>
#include <sstream>
#include <thread>

#include "bits/digest.h"
#include "operations.h"
#include "stand_ins.h"
#include "waypoints.h"

namespace {

constexpr int kMostQueries = 100;

Bytes Random(unsigned seed) {
  Bytes bytes(700);
  std::generate(bytes.begin(), bytes.end(), std::mt19937(seed));
  return bytes;
}

// Calls an operation with many arguments.
std::vector<Frame> PerformAll(const Operation& operation) {
  const unsigned count = operation.group == "solve" ? 500 : 100;  // they are short, and branch most
  std::vector<Frame> frames;
  for (unsigned seed = 0; seed < count; ++seed) {
    frames.push_back(Perform(operation, Random(seed), kMostQueries));
    EXPECT_EQ(frames.back().fault, "") << "seed " << seed;
  }
  return frames;
}

// All that came of an operation's calls, the same on every processor: to the bit, or, where the C
// library has a part in it, to 1e-7.
std::string DigestOf(const Operation& operation, const std::vector<Frame>& frames,
                     std::string text) {
  Digest digest(operation.writes & kByLibm ? 1e-7 : 0.0);
  for (const Frame& frame : frames) {
    digest.Add(frame.result.value_or(-99));
    digest.Add({frame.s, frame.e});
    for (const double joint : frame.joints) digest.Add(joint);
    digest.Add(frame.road);
    digest.Add(frame.array);
  }
  for (size_t at = 0; (at = text.find("-nan", at)) != text.npos;) text.erase(at, 1);
  digest.Add(text);
  std::ostringstream line;
  line << std::hex << digest.hash() << "  " << operation.name << '\n';
  return line.str();
}

struct Grouped : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  std::string do_grouping() const override { return "\1"; }
};

TEST(Operations, DependOnNothingButTheirArguments) {
  const std::ios defaults(nullptr);
  const std::locale odd(std::locale::classic(), new Grouped);
  std::ostringstream digests;
  for (const Operation& operation : Operations()) {
    SCOPED_TRACE(operation.name);
    const auto perform = [&] { return PerformAll(operation); };
    const auto [frames, out, err] = Captured(perform);
    digests << DigestOf(operation, frames, out + err);
    const auto expect_same = [&, &all = frames, &said = out, &told = err](bool has_out, auto call) {
      const auto [again, out_again, err_again] = Captured(call);
      const auto differs = std::mismatch(all.begin(), all.end(), again.begin(), SameFrames).first;
      EXPECT_EQ(differs - all.begin(), all.size()) << "the first seed that differs";
      EXPECT_EQ(has_out ? said : "", out_again);
      EXPECT_EQ(told, err_again);
    };
    expect_same(true, perform);

    std::cout << std::hex << std::showpos << std::scientific << std::setprecision(2) << std::left
              << std::setfill('*') << std::setw(99);
    std::cout.imbue(odd);
    std::locale::global(odd);
    (void)std::setlocale(LC_ALL, "de_DE.UTF-8");  // where the machine has it
    expect_same(true, perform);
    EXPECT_EQ(std::cout.width(), 99);
    std::locale::global(std::locale::classic());
    std::cout.copyfmt(defaults);

    std::cout.setstate(std::ios::failbit);
    expect_same(false, perform);
    std::cout.clear();
    expect_same(false, [&] { return close(1), perform(); });
    std::cout.clear();
  }
  std::ostringstream kept;
  kept << std::ifstream(QAL_KEPT_DIGESTS).rdbuf();
  std::ofstream("operation_digests.txt") << digests.str();
  EXPECT_EQ(kept.str(), digests.str())
      << "What an operation does has changed. If it is meant to, and the changelog says so:\n  cp "
      << std::filesystem::current_path() << "/operation_digests.txt " << QAL_KEPT_DIGESTS;
}

// Whether each point is whole: as the complete call wrote it, unless that has taken all back, or as
// it was.
bool IsPrefix(const std::vector<RoadPoint>& part, const std::vector<RoadPoint>& whole) {
  for (size_t i = 0; i < part.size() && !whole.empty(); ++i) {
    if (SameBits(part[i], Canary())) continue;
    if (i >= whole.size() || !SameBits(part[i], whole[i])) return false;
  }
  return true;
}

// Lets each allocation fail in a call of its own. Returns what is wrong.
std::string Starve(const Operation& operation, const Bytes& bytes) {
  constexpr int kFewQueries = 25;
  const Frame whole = Perform(operation, bytes, kFewQueries);
  for (long k = 1;; ++k) {
    const long live = allocations.live;
    {
      const Frame part = Perform(operation, bytes, kFewQueries, k);
      if (!part.fault.empty()) return part.fault;
      if (!part.starved) return "";
      if (part.result) return "not told of allocation " + std::to_string(k);
      if (!IsPrefix(part.road, whole.road) || !IsPrefix(part.array, whole.array)) return "half";
    }
    if (allocations.live != live) return "leaks at allocation " + std::to_string(k);
  }
}

TEST(Operations, PassOnThatMemoryHasRunOutAndLeakNothing) {
  for (const Operation& operation : Operations()) {
    const auto wrong = [&] {
      std::string all;
      for (unsigned seed = 0; seed < 100; ++seed) all += Starve(operation, Random(seed));
      return all;
    };
    EXPECT_EQ(std::get<0>(Captured(wrong)), "") << operation.name;
  }
}

// Runs for QAL_THREAD_SECONDS, otherwise shortly.
TEST(Threads, GetTheResultsOfOneByItself) {
  constexpr size_t kThreads = 8;
  constexpr size_t kSeeds = 10;  // each thread has its own
  const char* seconds = std::getenv("QAL_THREAD_SECONDS");
  const std::vector<Operation>& operations = Operations();
  const auto perform = [&](size_t i) {
    const auto seed = static_cast<unsigned>(i / operations.size());
    return Perform(operations[i % operations.size()], Random(seed), kMostQueries);
  };
  std::atomic<long> calls{0}, different{0};
  const auto run = [&] {
    // The messages go nowhere: a minute's would fill the disk.
    const int nowhere = open("/dev/null", O_WRONLY);
    for (const int descriptor : {1, 2}) dup2(nowhere, descriptor);
    close(nowhere);
    std::vector<Frame> expected;
    const size_t share = kSeeds * operations.size();
    for (size_t i = 0; i < kThreads * share; ++i) expected.push_back(perform(i));
    const auto end = std::chrono::steady_clock::now() +
                     std::chrono::duration<double>(seconds != nullptr ? std::atof(seconds) : 0.3);
    const auto work = [&](size_t thread) {
      for (size_t k = 0; std::chrono::steady_clock::now() < end; ++k, ++calls) {
        const size_t i = thread * share + k % share;
        if (!SameFrames(perform(i), expected[i])) ++different;
      }
    };
    std::vector<std::thread> threads;
    for (size_t thread = 0; thread < kThreads; ++thread) threads.emplace_back(work, thread);
    for (std::thread& thread : threads) thread.join();
    return 0;
  };
  (void)Captured(run);
  EXPECT_EQ(different, 0);
  RecordProperty("calls", std::to_string(calls));  // with --gtest_output
}

}  // namespace
