#include <qal/solve/batch.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <random>

// Times what bench/python_overhead.py calls from Python: seconds of each, for as often as asked.
namespace {

using namespace qal;

constexpr size_t kCount = 100'000;

double Seconds(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

std::vector<Joints> SomeJoints() {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> angle(-2.5, 2.5);
  std::vector<Joints> all(kCount);
  for (Joints& joints : all)
    std::generate(joints.begin(), joints.end(), [&] { return angle(random); });
  return all;
}

}  // namespace

// Prints a line for each line that is read, so that both sides take turns on the same machine.
int main() {
  const Arm arm = Arm::Reference();
  const std::vector<Joints> joints = SomeJoints();
  std::vector<Pose> poses(kCount);
  std::vector<Joints> solved(kCount);
  std::vector<Reason> reasons(kCount);
  (void)Forward(arm, joints, poses);
  double sum = 0;
  while (std::getchar() != EOF) {
    const double forward = Seconds([&] {
      for (const Joints& one : joints) sum += Forward(arm, one)->position.x;
    });
    const double nearest = Seconds([&] {
      for (size_t i = 0; i < kCount; ++i) sum += Nearest(arm, poses[i], joints[i])->joints[0];
    });
    const double all_forward = Seconds([&] { (void)Forward(arm, joints, poses, reasons); });
    const double all_nearest = Seconds([&] { (void)Nearest(arm, poses, joints, solved, reasons); });
    std::printf("%.9f %.9f %.9f %.9f\n", forward, nearest, all_forward, all_nearest);
    std::fflush(stdout);
  }
  return sum == 0.5 ? 1 : 0;
}
