#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>

#include "../../core/decimals.h"
#include "joint_move.h"
#include "joint_walk.h"

namespace qal {

namespace {

// Whether two joints are planned as one group, by their motors.
bool SameGroup(const ArmNumbers& numbers, int a, int b) {
  return numbers.gear_ratio[a] == numbers.gear_ratio[b] &&
         numbers.full_speed_rpm[a] == numbers.full_speed_rpm[b] &&
         numbers.dead_band_rad[a] == numbers.dead_band_rad[b];
}

// Cycles of a whole move, set by its slowest group of neighbouring joints with the same motors;
// nothing when a limit is below 1 or the count doesn't fit an int.
std::optional<int> CyclesOf(const ArmNumbers& numbers, const float* travels, int speed,
                            int max_acc) {
  if (speed < 1 || max_acc < 1) return std::nullopt;
  int cycles = 0;
  for (int first = 0, end = 0; first < kJointCount; first = end) {
    double travel = 0.0;
    for (end = first; end < kJointCount && SameGroup(numbers, first, end); ++end) {
      const double joint_travel = std::fabs(static_cast<double>(travels[end]));
      if (joint_travel > travel) travel = joint_travel;  // NaN is passed over
    }
    if (!(travel > numbers.dead_band_rad[first])) continue;
    const double motor_speed_rpm = static_cast<double>(speed) * numbers.full_speed_rpm[first] / 100;
    const std::optional<int> group = FastestCycles(numbers, travel, motor_speed_rpm, max_acc,
                                                   numbers.cycle_s, numbers.gear_ratio[first]);
    if (!group) return std::nullopt;
    cycles = std::max(cycles, *group);
  }
  return cycles;
}

}  // namespace

void RunTravels(const ArmNumbers& numbers, const RoadPoint& start, const RoadPoint& end,
                float* travels) {
  for (int j = 0; j < kJointCount; ++j) {
    const float d = static_cast<float>(end.jointpos[j] - start.jointpos[j]);
    const bool still = std::fabs(static_cast<double>(d)) <= numbers.dead_band_rad[j];
    travels[j] = still ? 0.0f : d;
  }
}

std::optional<int> FastestCycles(const ArmNumbers& numbers, double travel, double motor_speed_rpm,
                                 int motor_acc, double step_time, double gear_ratio) {
  // Whole numbers held in double, so that no limit however odd overflows on the way.
  const double ramp_cycles = std::trunc(motor_speed_rpm / motor_acc / step_time);
  // Growth of the motor's angle per cycle from one cycle to the next [rad].
  const double growth = step_time * motor_acc * numbers.shaft_rad_per_rpm_cycle;
  const double ramps = ramp_cycles * (growth / gear_ratio * ramp_cycles);
  if (travel >= ramps) {
    const double cruise_step =
        motor_speed_rpm * kShaftRadPerRpmTick * numbers.ticks_per_cycle / gear_ratio;
    const double cruise_cycles = std::trunc((travel - ramps) / cruise_step);
    return TruncateToInt(2 * ramp_cycles + cruise_cycles);
  }
  // No room for a cruise, or a travel that is not a number: twice the ramp of a triangle, even.
  const double cycles = std::trunc(std::sqrt(4 * travel * gear_ratio / growth));
  return TruncateToInt(std::fmod(cycles, 2.0) == 0.0 ? cycles : cycles + 1);
}

std::optional<int> RunCycles(const ArmNumbers& numbers, const RoadPoint& start,
                             const RoadPoint& end, int speed, int max_acc) {
  float travels[kJointCount];
  RunTravels(numbers, start, end, travels);
  return CyclesOf(numbers, travels, speed, max_acc);
}

int CruiseCycles(const ArmNumbers& numbers, int n, double travel, double step_time,
                 double gear_ratio, int acc) {
  constexpr int kTooFar = -1;
  if (acc < 1) return kTooFar;
  const double growth = (acc * numbers.shaft_rad_per_rpm_cycle * step_time) / gear_ratio;
  // n * n is exact in double as well, and can't overflow.
  const double temp = static_cast<double>(n) * n - 4 * travel / growth;
  if (!(temp >= 0.0)) return kTooFar;  // NaN as well
  return TruncateToInt(std::sqrt(temp)).value_or(kTooFar);
}

void JointSteps(const ArmNumbers& numbers, float travel, int cycles, int cruise_cycles, int joint,
                double* steps) {
  const double gear_ratio = numbers.gear_ratio[joint];
  const double q = numbers.joint_rad_per_rpm_cycle[joint];
  const long long N = cycles;
  long long M = cruise_cycles;
  long long a = (N - M) / 2;
  if ((N - M) % 2 == 1) {  // positive and odd: one more ramp cycle, one less of the cruise
    ++a;
    --M;
  }
  const double distance = std::fabs(static_cast<double>(travel));
  const double cycles_a = static_cast<double>(a);
  const double per_acc = q * cycles_a * cycles_a + static_cast<double>(M * a) *
                                                       kShaftRadPerRpmTick *
                                                       numbers.ticks_per_cycle / gear_ratio;
  if (per_acc == 0.0) {
    // No ramp to accelerate on (no ramp cycles, or a single cycle): the travel in equal steps.
    for (long long i = 0; i < N; ++i) steps[i] = distance / static_cast<double>(N);
    return;
  }
  const double acc = distance / per_acc;
  const double max_speed = cycles_a * acc;
  const double max_step = max_speed * kShaftRadPerRpmTick * numbers.ticks_per_cycle / gear_ratio;
  long long i = 1;
  for (; i <= std::min(a, N); ++i) {
    steps[i - 1] = (static_cast<double>(i) - 0.5) * kShaftRadPerRpmTick * numbers.ticks_per_cycle *
                   acc / gear_ratio;
  }
  for (; i <= std::min(a + M, N); ++i) steps[i - 1] = max_step;
  for (; i <= N; ++i) steps[i - 1] = steps[M + 2 * a - i];  // the ramp up, backwards
}

bool PlanRun(const Context& arm, const RoadPoint& start, const RoadPoint& end,
             std::vector<RoadPoint>& road, int speed, int max_acc) {
  constexpr int kLongestUnprofiled = 5;
  const ArmNumbers& numbers = arm.numbers;
  float travels[kJointCount];
  RunTravels(numbers, start, end, travels);
  const std::optional<int> cycles = CyclesOf(numbers, travels, speed, max_acc);
  if (!cycles || *cycles > kLongestRunCycles) return false;
  const int N = *cycles;
  if (N <= kLongestUnprofiled) {
    arm.observer.Hear({Event::kUnprofiledRun, nullptr, nullptr, N});
    ReplaceByEndPoints(start, end, road);
    return true;
  }

  // Row j: how far joint j moves in each cycle [rad], with its sign.
  const std::unique_ptr<double[]> steps(new double[kJointCount * static_cast<size_t>(N)]);
  const auto row = [&](int j) { return steps.get() + static_cast<ptrdiff_t>(j) * N; };
  for (int j = 0; j < kJointCount; ++j) {
    if (!(std::fabs(travels[j]) > 0.0f)) {  // NaN stands still as well
      std::fill_n(row(j), N, 0.0);
      continue;
    }
    const double distance = std::fabs(static_cast<double>(travels[j]));
    // -1: too far for this acceleration; the joint then runs a steeper triangle of N cycles.
    const int cruise_cycles = std::max(
        CruiseCycles(numbers, N, distance, numbers.cycle_s, numbers.gear_ratio[j], max_acc), 0);
    JointSteps(numbers, travels[j], N, cruise_cycles, j, row(j));
    if (travels[j] < 0.0f) std::transform(row(j), row(j) + N, row(j), std::negate<>());
  }
  arm.observer.Hear({Event::kRun, nullptr, nullptr, N});

  road.clear();
  road.reserve(static_cast<size_t>(N));
  RoadPoint point = start;
  double moved[kJointCount] = {};
  for (int i = 0; i < N - 1; ++i) {
    for (int j = 0; j < kJointCount; ++j) {
      moved[j] += row(j)[i];
      point.jointpos[j] = start.jointpos[j] + moved[j];
    }
    AppendWithPose(arm, point, road);
  }
  // The end point takes the place of the last cycle.
  road.push_back(end);
  return true;
}

}  // namespace qal
