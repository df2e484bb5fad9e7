#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <optional>

#include "../../core/decimals.h"
#include "../arm_constants.h"
#include "../diagnostics.h"
#include "../ikfunc.h"
#include "joint_walk.h"

namespace {

// Growth of the motor's angle per cycle from one cycle to the next at `acc` rpm/s [rad].
double ShaftStepGrowth(double step_time, int acc) {
  return step_time * acc * qal::kShaftRadPerRpmCycle;
}

// Cycles of one joint's fastest profile; nothing when the count doesn't fit an int.
std::optional<int> FastestCycles(double max_run_dis, double joint_max_speed, int joint_acc,
                                 double step_time, int radio) {
  // Whole numbers held in double, so that no limit however odd overflows on the way.
  const double joint_addspeed_count = std::trunc(joint_max_speed / joint_acc / step_time);
  const double per_addapeed_step = ShaftStepGrowth(step_time, joint_acc);
  const double min_distance =
      joint_addspeed_count * (per_addapeed_step / radio * joint_addspeed_count);
  if (max_run_dis >= min_distance) {
    const double max_speed_step =
        joint_max_speed * qal::kShaftRadPerRpmTick * qal::kTicksPerCycle / radio;
    const double max_speedcount = std::trunc((max_run_dis - min_distance) / max_speed_step);
    return qal::TruncateToInt(2 * joint_addspeed_count + max_speedcount);
  }
  // No room for a cruise, or a travel that is not a number: twice the ramp of a triangle, even.
  const double temp = std::trunc(std::sqrt(4 * max_run_dis * radio / per_addapeed_step));
  return qal::TruncateToInt(std::fmod(temp, 2.0) == 0.0 ? temp : temp + 1);
}

// Cycles of a whole move, set by its slower group; nothing when a limit is below 1 or the count
// doesn't fit an int.
std::optional<int> RunCycles(const float* arm_run_joint, int speed, int max_acc) {
  if (speed < 1 || max_acc < 1) return std::nullopt;
  const double joint_max_speed = static_cast<double>(speed) * qal::kFullSpeedRpm / 100;
  int cycles = 0;
  for (const int first : {0, qal::kBigAxisCount}) {  // the big axes, then the small ones
    double run_dis = 0.0;
    for (int j = first; j < first + 3; ++j) {
      const double travel = std::fabs(static_cast<double>(arm_run_joint[j]));
      if (travel > run_dis) run_dis = travel;  // NaN is passed over
    }
    if (!(run_dis > qal::DeadBandRad(first))) continue;
    const std::optional<int> group =
        FastestCycles(run_dis, joint_max_speed, max_acc, qal::kCycleS, qal::GearRatio(first));
    if (!group) return std::nullopt;
    cycles = std::max(cycles, *group);
  }
  return cycles;
}

}  // namespace

void Ikfunc::countjointdis(RoadPoint s_point, RoadPoint e_point, float* arm_run_joint) {
  for (int j = 0; j < qal::kJointCount; ++j) {
    const float d = static_cast<float>(e_point.jointpos[j] - s_point.jointpos[j]);
    const bool still = std::fabs(static_cast<double>(d)) <= qal::DeadBandRad(j);
    arm_run_joint[j] = still ? 0.0f : d;
  }
}

int Ikfunc::countmaxruntime(double max_run_dis, double joint_max_speed, int joint_acc,
                            double step_time, int radio) {
  if (joint_acc < 1 || !(joint_max_speed > 0.0)) return 0;
  return FastestCycles(max_run_dis, joint_max_speed, joint_acc, step_time, radio).value_or(0);
}

int Ikfunc::CountRunCurvelLineSize(RoadPoint s_point, RoadPoint e_point, int speed, int max_acc) {
  float arm_run_joint[qal::kJointCount];
  countjointdis(s_point, e_point, arm_run_joint);
  return RunCycles(arm_run_joint, speed, max_acc).value_or(0);
}

int Ikfunc::caltimeslover(int n, double run_dis, double step_time, int radio, int acc) {
  constexpr int kTooFar = -1;
  if (acc < 1) return kTooFar;
  const double growth = (acc * qal::kShaftRadPerRpmCycle * step_time) / radio;
  // n * n is exact in double as well, and can't overflow.
  const double temp = static_cast<double>(n) * n - 4 * run_dis / growth;
  if (!(temp >= 0.0)) return kTooFar;  // NaN as well
  return qal::TruncateToInt(std::sqrt(temp)).value_or(kTooFar);
}

void Ikfunc::getJointStepLength(float joint_distance, int alljointruncount, int max_speed_count,
                                int joint_id, double* result, int /*max_acc*/) {
  const bool big = joint_id >= 0 && joint_id < qal::kBigAxisCount;
  const int radio = big ? qal::kBigGearRatio : qal::kSmallGearRatio;
  const double q = big ? qal::kBigJointRadPerRpmCycle : qal::kSmallJointRadPerRpmCycle;
  const long long N = alljointruncount;
  long long M = max_speed_count;
  long long a = (N - M) / 2;
  if ((N - M) % 2 == 1) {  // positive and odd: one more ramp cycle, one less of the cruise
    ++a;
    --M;
  }
  const double distance = std::fabs(static_cast<double>(joint_distance));
  const double cycles_a = static_cast<double>(a);
  const double per_acc = q * cycles_a * cycles_a + static_cast<double>(M * a) *
                                                       qal::kShaftRadPerRpmTick *
                                                       qal::kTicksPerCycle / radio;
  if (per_acc == 0.0) {
    // No ramp to accelerate on (no ramp cycles, or a single cycle): the travel in equal steps.
    for (long long i = 0; i < N; ++i) result[i] = distance / static_cast<double>(N);
    return;
  }
  const double acc = distance / per_acc;
  const double max_speed = cycles_a * acc;
  const double max_step = max_speed * qal::kShaftRadPerRpmTick * qal::kTicksPerCycle / radio;
  long long i = 1;
  for (; i <= std::min(a, N); ++i) {
    result[i - 1] = (static_cast<double>(i) - 0.5) * qal::kShaftRadPerRpmTick *
                    qal::kTicksPerCycle * acc / radio;
  }
  for (; i <= std::min(a + M, N); ++i) result[i - 1] = max_step;
  for (; i <= N; ++i) result[i - 1] = result[M + 2 * a - i];  // the ramp up, backwards
}

bool Ikfunc::CountRunCurvelLineToBuffer(RoadPoint s_point, RoadPoint e_point,
                                        std::vector<RoadPoint>* point_road, int speed,
                                        int max_acc) {
  constexpr int kLongestUnprofiled = 5;
  float arm_run_joint[qal::kJointCount];
  countjointdis(s_point, e_point, arm_run_joint);
  const std::optional<int> cycles = RunCycles(arm_run_joint, speed, max_acc);
  if (!cycles || *cycles > qal::kLongestRunCycles) return false;
  const int N = *cycles;
  if (N <= kLongestUnprofiled) {
    qal::WriteLine(qal::kShortRunLine, N);
    qal::ReplaceByEndPoints(s_point, e_point, *point_road);
    return true;
  }

  // Row j: how far joint j moves in each cycle [rad], with its sign.
  const std::unique_ptr<double[]> result(new double[qal::kJointCount * static_cast<size_t>(N)]);
  const auto row = [&](int j) { return result.get() + static_cast<ptrdiff_t>(j) * N; };
  for (int j = 0; j < qal::kJointCount; ++j) {
    if (!(std::fabs(arm_run_joint[j]) > 0.0f)) {  // NaN stands still as well
      std::fill_n(row(j), N, 0.0);
      continue;
    }
    const double distance = std::fabs(static_cast<double>(arm_run_joint[j]));
    // -1: too far for this acceleration; the joint then runs a steeper triangle of N cycles.
    const int max_speed_count =
        std::max(caltimeslover(N, distance, qal::kCycleS, qal::GearRatio(j), max_acc), 0);
    getJointStepLength(arm_run_joint[j], N, max_speed_count, j, row(j), max_acc);
    if (arm_run_joint[j] < 0.0f) std::transform(row(j), row(j) + N, row(j), std::negate<>());
  }
  qal::WriteLine(qal::kRunLine, N);

  point_road->clear();
  point_road->reserve(static_cast<size_t>(N));
  RoadPoint temp_point = s_point;
  double temp_dis[qal::kJointCount] = {};
  for (int i = 0; i < N - 1; ++i) {
    for (int j = 0; j < qal::kJointCount; ++j) {
      temp_dis[j] += row(j)[i];
      temp_point.jointpos[j] = s_point.jointpos[j] + temp_dis[j];
    }
    qal::AppendWithPose(temp_point, *point_road);
  }
  // The end point takes the place of the last cycle.
  point_road->push_back(e_point);
  return true;
}
