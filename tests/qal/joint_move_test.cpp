#include "qal/plan/joint_move.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <vector>

namespace qal {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Random numbers from a seed that never changes.
class Random {
 public:
  double operator()(double low, double high) {
    return std::uniform_real_distribution<>(low, high)(engine_);
  }
  double Decades(double low, double high) { return std::pow(10, (*this)(low, high)); }
  int Of(int count) { return static_cast<int>((*this)(0, count)); }

 private:
  std::mt19937_64 engine_{2027};
};

// An arm whose joints turn without end, with limits from gentle to wild.
Arm RandomArm(Random& random) {
  ArmDescription description;
  ArmSettings settings;
  for (size_t j = 0; j < 6; ++j) {
    description.joints[j].continuous = true;
    settings.joints[j].velocity_rad_s = random.Decades(-1, 1);
    settings.joints[j].acceleration_rad_s2 = random.Decades(-1, 2);
    settings.joints[j].jerk_rad_s3 = random.Decades(0, 4);
  }
  return *Arm::FromSolver(Arm::Reference().solver(), description, settings);
}

AxisLimits LimitsOf(const Arm& arm, size_t j) {
  const JointModel& joint = arm.joints()[j];
  return {joint.velocity_rad_s.value, joint.acceleration_rad_s2.value, joint.jerk_rad_s3.value};
}

// Whether a state can be braked (`sign` 1) or come from (-1) within the limits.
bool IsAllowed(const AxisState& state, const AxisLimits& limits, double sign) {
  const double a = state.acceleration;
  return std::fabs(state.velocity + sign * a * std::fabs(a) / 2 / limits.jerk) <= limits.velocity;
}

// At rest, at a limit, or anything that is allowed.
AxisState RandomState(Random& random, const AxisLimits& limits, double position, double sign) {
  const int kind = random.Of(5);
  if (kind < 2) return {position, 0, 0};
  const double side = random.Of(2) == 0 ? -1 : 1;
  if (kind == 2) return {position, side * limits.velocity, 0};
  for (double most = limits.acceleration;; most *= 0.7) {
    const double a = most * (kind == 3 ? side : random(-1, 1));
    const AxisState state = {position, limits.velocity * random(-1, 1), a};
    if (IsAllowed(state, limits, sign)) return state;
  }
}

struct Move {
  MotionState from, to;
};

Move RandomMove(Random& random, const Arm& arm) {
  Move move;
  for (size_t j = 0; j < 6; ++j) {
    const AxisLimits limits = LimitsOf(arm, j);
    const double begin = random(-3, 3);
    const double ways[] = {0, random.Decades(-12, -3), random(-3, 3), -random.Decades(-3, 1)};
    const AxisState from = RandomState(random, limits, begin, 1);
    AxisState to = RandomState(random, limits, begin + ways[random.Of(4)], -1);
    if (random.Of(50) == 0 && IsAllowed(from, limits, -1)) to = from;
    if (random.Of(200) == 0) to.position = random(-1e6, 1e6);
    const auto set = [j](MotionState& state, const AxisState& axis) {
      state.joints[j] = axis.position;
      state.velocities[j] = axis.velocity;
      state.accelerations[j] = axis.acceleration;
    };
    set(move.from, from);
    set(move.to, to);
  }
  return move;
}

AxisState At(const MotionState& state, size_t j) {
  return {state.joints[j], state.velocities[j], state.accelerations[j]};
}

// By how much a joint's pieces exceed its limits at the most, as a fraction; and how far apart they
// are where they meet each other and the ends, as a fraction of what rounding explains.
struct Faults {
  double excess = 0;
  double gap = 0;
};

Faults FaultsOf(const JointMotion& motion, size_t j, const AxisLimits& limits) {
  Faults faults;
  const AxisMotion& pieces = motion.joints()[j];
  const double duration_s = motion.duration_s();
  AxisState before = At(motion.from(), j);
  const double scale = std::max({1.0, std::fabs(before.position), std::fabs(motion.to().joints[j]),
                                 limits.velocity * duration_s});
  const double time_digit = 1e-3 + duration_s * 1e-3;  // of 1e-12 s
  const auto meet = [&](const AxisState& a, const AxisState& b) {
    const double gaps[] = {
        std::fabs(a.position - b.position) / scale,
        std::fabs(a.velocity - b.velocity) / (limits.velocity + limits.acceleration * time_digit),
        std::fabs(a.acceleration - b.acceleration) /
            (limits.acceleration + limits.jerk * time_digit)};
    faults.gap = std::max({faults.gap, gaps[0], gaps[1], gaps[2]});
  };
  for (int i = 0; i < pieces.size(); ++i) {
    const Cubic& piece = pieces.cubic(i);
    const double end_s = i + 1 < pieces.size() ? pieces.begin_s(i + 1) : duration_s;
    const double length_s = end_s - pieces.begin_s(i);
    if (!(length_s >= 0)) faults.gap = kInfinity;
    meet(before, piece.At(0));
    before = piece.At(length_s);
    double times_s[] = {0, length_s, -piece.acceleration / piece.jerk};
    if (!(times_s[2] > 0 && times_s[2] < length_s)) times_s[2] = 0;
    for (const double time_s : times_s) {
      const AxisState state = piece.At(time_s);
      faults.excess = std::max({faults.excess, std::fabs(state.velocity) / limits.velocity - 1,
                                std::fabs(state.acceleration) / limits.acceleration - 1,
                                std::fabs(piece.jerk) / limits.jerk - 1});
    }
  }
  meet(before, At(motion.to(), j));
  return faults;
}

TEST(JointMove, KeepsEveryLimitAndMeetsItsEnds) {
  const char* moves = std::getenv("QAL_MOVES");
  const int count = moves != nullptr ? std::atoi(moves) : 100000;
  Random random;
  Faults worst;
  Arm arm = RandomArm(random);
  for (int i = 0; i < count; ++i) {
    if (i % 100 == 0) arm = RandomArm(random);
    const Move move = RandomMove(random, arm);
    const auto motion = PlanJoint(arm, move.from, move.to);
    ASSERT_TRUE(motion) << i << ": joint " << motion.error().error.joint << ' '
                        << motion.error().error.detail << ' ' << motion.error().error.value;
    for (size_t j = 0; j < 6; ++j) {
      const Faults faults = FaultsOf(*motion, j, LimitsOf(arm, j));
      worst = {std::max(worst.excess, faults.excess), std::max(worst.gap, faults.gap)};
      ASSERT_LE(faults.excess, 1e-9)
          << i << ", joint " << j << ", " << motion->duration_s() << " s";
      ASSERT_LE(faults.gap, 1e-12) << i << ", joint " << j << ", " << motion->duration_s() << " s";
    }
  }
  RecordProperty("excess", std::to_string(worst.excess));
  std::printf("%d moves: excess %g, gap %g\n", count, worst.excess, worst.gap);
}

}  // namespace
}  // namespace qal
