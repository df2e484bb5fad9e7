#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <random>
#include <vector>

#include "../src/kinematics/ikfunc.h"
#include "quiet.h"

// The slowest calls of `ArmIk`, as a table of Markdown: what a pose takes that the arm is close to
// a singularity at, or doesn't reach, beside what most take. The quickest of many calls of each
// pose is the pose's; what else the machine does then hardly shows.
namespace qal::bench {

namespace {

constexpr size_t kPoses = 100000;
constexpr int kCalls = 25;

struct Call {
  RoadPoint target;
  double reference[6];
  double quickest_ns;
};

// Every tenth pose has about half of its joints at multiples of 45 degrees, where singularities
// are; every twentieth is moved by up to 1 m, the others by up to 1 mm.
std::vector<Call> MakeCalls() {
  std::mt19937_64 engine(20261126);
  std::uniform_real_distribution<double> joint(-2.9, 2.9);
  std::uniform_real_distribution<double> part(-1, 1);
  std::vector<Call> calls(kPoses);
  for (size_t i = 0; i < kPoses; ++i) {
    auto& [target, reference, quickest_ns] = calls[i];
    quickest_ns = HUGE_VAL;
    for (double& angle : reference) {
      angle = joint(engine);
      if (i % 10 == 0 && engine() % 2 == 0) angle = std::round(angle) * 0.785398163397448;
    }
    std::copy(reference, reference + 6, target.jointpos);
    (void)Ikfunc::ArmFk(target);  // finite joints have a pose
    const double most_m = i % 20 == 1 ? 1 : 1e-3;
    target.position.x += most_m * part(engine);
    target.position.y += most_m * part(engine);
    target.position.z += most_m * part(engine);
  }
  return calls;
}

template <class Work>
double NanosecondsOf(Work work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - begin).count();
}

}  // namespace

}  // namespace qal::bench

int main() {
  using namespace qal::bench;
  std::vector<Call> calls = MakeCalls();
  double clock_ns = HUGE_VAL;
  for (int i = 0; i < 1000; ++i) clock_ns = std::min(clock_ns, NanosecondsOf([] {}));
  {
    const Quiet quiet;
    for (int round = 0; round < kCalls; ++round) {
      for (Call& call : calls) {
        RoadPoint point = call.target;
        const double ns = NanosecondsOf([&] { (void)Ikfunc::ArmIk(point, call.reference); });
        call.quickest_ns = std::min(call.quickest_ns, ns - clock_ns);
      }
    }
  }
  std::sort(calls.begin(), calls.end(),
            [](const Call& a, const Call& b) { return a.quickest_ns < b.quickest_ns; });
  const auto times_the_median = [&](size_t slower) {
    return calls[kPoses - 1 - slower].quickest_ns / calls[kPoses / 2].quickest_ns;
  };
  std::printf("| ArmIk, of %zu poses | times the median |\n| --- | --- |\n", kPoses);
  std::printf("| 99.9th percentile | %.2f |\n", times_the_median(kPoses / 1000));
  std::printf("| 99.99th percentile | %.2f |\n", times_the_median(kPoses / 10000));
  std::printf("| slowest | %.2f |\n", times_the_median(0));
}
