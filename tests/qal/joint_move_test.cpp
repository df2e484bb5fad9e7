#include <gtest/gtest.h>
#include <qal/plan/sampled.h>
#include <qal/solve/kinematics.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "../../bench/seeded_moves.h"

namespace qal {
namespace {

using bench::EndlessArm;
using bench::KeepJoints;
using bench::LimitsOf;
using bench::Random;
using bench::RandomArm;
using bench::RandomMove;
using bench::SeededMove;
using bench::Set;

constexpr unsigned kSeed = 2027;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

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

Faults FaultsOf(const JointMotion& motion, const Arm& arm) {
  Faults worst;
  for (size_t j = 0; j < 6; ++j) {
    const Faults faults = FaultsOf(motion, j, LimitsOf(arm, j));
    worst = {std::max(worst.excess, faults.excess), std::max(worst.gap, faults.gap)};
  }
  return worst;
}

// How many moves are tried.
int Count(int usual) {
  const char* moves = std::getenv("QAL_MOVES");
  return moves != nullptr ? std::atoi(moves) : usual;
}

TEST(JointMove, KeepsEveryLimitAndMeetsItsEnds) {
  const int count = Count(100000);
  Random random(kSeed);
  Faults worst;
  Arm arm = RandomArm(random);
  for (int i = 0; i < count; ++i) {
    if (i % 100 == 0) arm = RandomArm(random);
    const SeededMove move = RandomMove(random, arm);
    const auto motion = PlanJoint(arm, move.from, move.to);
    ASSERT_TRUE(motion) << i << ": joint " << motion.error().error.joint << ' '
                        << motion.error().error.detail << ' ' << motion.error().error.value;
    const Faults faults = FaultsOf(*motion, arm);
    worst = {std::max(worst.excess, faults.excess), std::max(worst.gap, faults.gap)};
    ASSERT_LE(faults.excess, 1e-9) << i << ", " << motion->duration_s() << " s";
    ASSERT_LE(faults.gap, 1e-12) << i << ", " << motion->duration_s() << " s";
  }
  std::printf("%d moves: excess %g, gap %g\n", count, worst.excess, worst.gap);
}

// What moves of one joint in a time can be, found otherwise: the acceleration at each moment is
// what is wanted there, between the lowest and the highest that start and end leave.
class Bounds {
 public:
  Bounds(const AxisState& from, const AxisState& to, const AxisLimits& limits, double time_s)
      : from_(from), to_(to), limits_(limits), time_s_(time_s) {}

  // Whether the displacement can be made, by more than rounding.
  bool Allow() const {
    const Bounds mirrored({0, -from_.velocity, -from_.acceleration},
                          {0, -to_.velocity, -to_.acceleration}, limits_, time_s_);
    const double way = to_.position - from_.position;
    const double rounding = 1e-12 * (limits_.velocity * time_s_);
    return way < Farthest() - rounding && -way < mirrored.Farthest() - rounding;
  }

 private:
  struct Outcome {
    double way, velocity;
    double top;  // the highest velocity up to `until_s`
  };

  // Falls from wherever it is to 0 at `high_until`, and from 0 at `low_from`.
  Outcome Run(double high_until, double low_from, double until_s) const {
    const double j = limits_.jerk;
    const double a0 = from_.acceleration;
    const double a1 = to_.acceleration;
    const double lines[][2] = {{a0, j},
                               {a0, -j},
                               {a1 + j * time_s_, -j},
                               {a1 - j * time_s_, j},
                               {limits_.acceleration, 0},
                               {-limits_.acceleration, 0},
                               {0, 0},
                               {j * high_until, -j},
                               {j * low_from, -j}};
    std::vector<double> kinks = {until_s, std::clamp(high_until, 0.0, until_s),
                                 std::clamp(low_from, 0.0, until_s)};
    for (const auto& a : lines) {
      for (const auto& b : lines) {
        const double kink = (b[0] - a[0]) / (a[1] - b[1]);
        if (a[1] > b[1] && kink > 0 && kink < until_s) kinks.push_back(kink);
      }
    }
    std::sort(kinks.begin(), kinks.end());
    const auto acceleration = [&](double t) {
      const double low = std::max({a0 - j * t, -limits_.acceleration, a1 - j * (time_s_ - t)});
      const double high = std::min({a0 + j * t, limits_.acceleration, a1 + j * (time_s_ - t)});
      const double wanted =
          t < high_until ? j * (high_until - t) : std::min(0.0, j * (low_from - t));
      return std::max(low, std::min(high, wanted));
    };
    Outcome run = {0, from_.velocity, from_.velocity};
    double before = 0;
    for (const double t : kinks) {
      const double h = t - before;
      const double a = acceleration(before);
      const double b = acceleration(t);
      run.way += h * (run.velocity + h * (2 * a + b) / 6);
      run.velocity += h * (a + b) / 2;
      run.top = std::max(run.top, run.velocity);
      before = t;
    }
    return run;
  }

  template <class Above>
  double Halved(double low, double high, Above above) const {
    for (int i = 0; i < 60; ++i) {
      const double middle = (low + high) / 2;
      (above(middle) ? high : low) = middle;
    }
    return low;
  }

  double Farthest() const {
    // Beyond these, the acceleration is as low or as high as it gets.
    const double reach_s = time_s_ + 2 * limits_.acceleration / limits_.jerk;
    const double early = -reach_s;
    const double late = reach_s;
    if (time_s_ * limits_.jerk < std::fabs(to_.acceleration - from_.acceleration) ||
        Run(early, early, time_s_).velocity > to_.velocity ||
        Run(late, late, time_s_).velocity < to_.velocity) {
      return -kInfinity;
    }
    const double at =
        Halved(early, late, [&](double t) { return Run(t, t, time_s_).velocity > to_.velocity; });
    const Outcome free = Run(at, at, time_s_);
    if (free.top <= limits_.velocity) return free.way;
    const double level = Halved(
        0, at, [&](double t) { return Run(t, t, std::min(t, time_s_)).top > limits_.velocity; });
    const double leave = Halved(
        level, late, [&](double t) { return Run(level, t, time_s_).velocity > to_.velocity; });
    return Run(level, leave, time_s_).way;
  }

  AxisState from_, to_;
  AxisLimits limits_;
  double time_s_;
};

// Whether every joint can make the move in that time.
bool Allowed(const Arm& arm, const SeededMove& move, double time_s) {
  for (size_t j = 0; j < 6; ++j) {
    if (!Bounds(At(move.from, j), At(move.to, j), LimitsOf(arm, j), time_s).Allow()) return false;
  }
  return true;
}

// How many of the durations from `least_s` on that are shorter than the planned one could be had.
int Quicker(const Arm& arm, const SeededMove& move, double least_s, double duration_s) {
  int quicker = 0;
  for (double part = 1 / 24.0; part < 1.02; part += 1 / 24.0) {
    const double shorter_s = std::max(least_s, duration_s * std::min(part, 1 - 1e-6));
    if (shorter_s < duration_s) quicker += Allowed(arm, move, shorter_s) ? 1 : 0;
  }
  return quicker;
}

TEST(JointMove, IsTheQuickestThereIs) {
  const int count = Count(100000) / 50;
  int allowed = 0;
  Random random(kSeed);
  for (int i = 0; i < count; ++i) {
    const Arm arm = RandomArm(random);
    SeededMove move = RandomMove(random, arm);
    // Mostly of one or two joints, so that it isn't always the slowest of six that is looked at.
    if (i % 20 > 0) KeepJoints(move, 1 + static_cast<size_t>(random.Of(2)));
    const double quickest_s = PlanJoint(arm, move.from, move.to)->duration_s();
    const double least_s = random.Of(3) == 0 ? random(0, 3) * quickest_s : 0;
    const double duration_s = PlanJoint(arm, move.from, move.to, {{}, least_s})->duration_s();
    ASSERT_EQ(Quicker(arm, move, least_s, duration_s), 0) << i << ", " << duration_s << " s";
    allowed += Allowed(arm, move, duration_s * (1 + 1e-6)) ? 1 : 0;
  }
  EXPECT_GT(allowed, 0.9 * count);  // the others are too small to tell, or alone
}

// Moves that can take some durations and longer ones, but none between, of an arm whose limits of
// acceleration and jerk are 1: way, start and end rates, limit of velocity.
TEST(JointMove, FindsTheFirstOfSeveralStretchesOfDurations) {
  constexpr double kMoves[][6] = {{-0.05, -0.18, 0, 0.17, 0.62, 0.23},
                                  {-2.36, 0.5, -1, -2.23, -1, 2.47},
                                  {0.27, 0.61, -0.63, 0.24, 0, 0.71},
                                  {0.16, 0.57, 0, -0.62, -0.74, 1.12}};
  for (const auto& [way, v0, a0, v1, a1, top] : kMoves) {
    SCOPED_TRACE(way);
    SeededMove move;
    move.from = {{}, {v0}, {a0}};
    move.to = {{way}, {v1}, {a1}};
    const Arm arm = EndlessArm([top = top](size_t) { return AxisLimits{top, 1, 1}; });
    const auto motion = PlanJoint(arm, move.from, move.to);
    ASSERT_TRUE(motion);
    EXPECT_EQ(Quicker(arm, move, 0, motion->duration_s()), 0) << motion->duration_s() << " s";
    EXPECT_LE(FaultsOf(*motion, arm).gap, 1e-12);
  }
}

// A move that is planned again from where it is takes what it has left, but for very few near their
// end, where rounding leaves no motion that takes about as long.
TEST(JointMove, TakesWhatItHasLeftWhenPlannedAgain) {
  Random random(kSeed);
  const int count = Count(100000) / 5;
  int longer = 0;
  for (int i = 0; i < count; ++i) {
    const Arm arm = RandomArm(random);
    const SeededMove move = RandomMove(random, arm);
    const auto motion = PlanJoint(arm, move.from, move.to);
    const double time_s = motion->duration_s() * random(0, 1);
    const auto rest = PlanJoint(arm, motion->At(time_s), move.to);
    // On the way to an end that is about to leave the limits itself.
    if (!rest && rest.error().error.detail == "unavoidable_start_velocity_rad_s") continue;
    ASSERT_TRUE(rest) << i;
    const double left_s = motion->duration_s() - time_s;
    ASSERT_GE(rest->duration_s(), left_s - 1e-4 * (1 + left_s)) << i;
    longer += rest->duration_s() > left_s + 1e-4 * (1 + left_s) ? 1 : 0;
  }
  EXPECT_LE(longer, count / 10000);
}

TEST(JointMove, SaysWhichEndOrSettingIsRefused) {
  const Arm arm = Arm::Reference();
  const auto [v, a, jerk] = LimitsOf(arm, 1);
  const double range = arm.joints()[1].upper_rad.value;
  const double g = a * a / 2 / jerk;  // gained while the acceleration is taken away
  const double inf = -kInfinity;
  constexpr Reason kRange = Reason::kJointRange;
  constexpr Reason kRate = Reason::kEndRate;
  constexpr Reason kSetting = Reason::kSetting;
  const char* const start_over = "unavoidable_start_velocity_rad_s";
  const char* const end_over = "unavoidable_end_velocity_rad_s";
  const struct {
    AxisState from, to;
    JointLimits limits;
    Error error;
    double along;
  } kRows[] = {{{0, inf}, {}, {}, {Reason::kNotFinite, 1, inf}, 0},
               {{}, {0, 0, inf}, {}, {Reason::kNotFinite, 1, inf}, 0},
               {{}, {}, {{0}}, {kSetting, -1, 0, 1, "velocity_scale"}, 0},
               {{}, {}, {{1, 1.5}}, {kSetting, -1, 1.5, 1, "acceleration_scale"}, 0},
               {{}, {}, {{1, 1, inf}}, {kSetting, -1, inf, 1, "jerk_scale"}, 0},
               {{}, {}, {{}, -1}, {kSetting, -1, -1, 0, "duration_s"}, 0},
               {{}, {}, {{}, 2e12}, {kSetting, -1, 2e12, 1e12, "duration_s"}, 0},
               {{range + 1}, {}, {}, {kRange, 1, range + 1, range}, 0},
               {{}, {-range - 1}, {}, {kRange, 1, -range - 1, -range}, 1},
               {{0, v}, {}, {{0.5}}, {kRate, 1, v, v / 2, "start_velocity_rad_s"}, 0},
               {{}, {0, 0, -2 * a}, {}, {kRate, 1, -2 * a, a, "end_acceleration_rad_s2"}, 1},
               {{0, v - g / 2, a}, {}, {}, {kRate, 1, v + g / 2, v, start_over}, 0},
               {{}, {0, v - g / 2, -a}, {}, {kRate, 1, v + g / 2, v, end_over}, 1}};
  for (const auto& [from, to, limits, expected, along] : kRows) {
    SCOPED_TRACE(testing::Message() << static_cast<int>(expected.reason) << expected.detail);
    SeededMove move;
    Set(move.from, 1, from);
    Set(move.to, 1, to);
    const auto motion = PlanJoint(arm, move.from, move.to, limits);
    ASSERT_FALSE(motion);
    const auto& [reason, joint, value, bound, detail] = motion.error().error;
    EXPECT_EQ(std::tie(reason, joint, detail),
              std::tie(expected.reason, expected.joint, expected.detail));
    EXPECT_DOUBLE_EQ(value, expected.value);
    EXPECT_EQ(bound, expected.bound);
    EXPECT_EQ(motion.error().along, along);
  }
}

// At full speed 0.01 rad before the end of its range, a joint has to leave it: by the way of the
// jerk phase, t = a / j, and of braking from what is left of the speed.
TEST(JointMove, SaysWhereAMovingJointHasToLeaveItsRange) {
  const Arm arm = Arm::Reference();
  const AxisLimits limits = LimitsOf(arm, 1);
  const auto [velocity, acceleration, jerk] = limits;
  const double upper = arm.joints()[1].upper_rad.value;
  const double phase_s = acceleration / jerk;
  const double left = velocity - acceleration * phase_s / 2;
  const double passed =
      phase_s * (velocity - acceleration * phase_s / 6) + left * left / 2 / acceleration;
  SeededMove move;
  Set(move.from, 1, {upper - 0.01, velocity, 0});
  const auto motion = PlanJoint(arm, move.from, move.to);
  ASSERT_FALSE(motion);
  const auto& [error, along, before] = motion.error();
  EXPECT_EQ(error.reason, Reason::kJointRange);
  EXPECT_EQ(error.joint, 1);
  EXPECT_EQ(error.bound, upper);
  EXPECT_NEAR(error.value, upper - 0.01 + passed, 1e-9);
  EXPECT_NEAR(before.joints[1], upper, 1e-9);
  EXPECT_NEAR(before.pose.position.x, Forward(arm, before.joints)->position.x, 1e-15);
  const auto endless = PlanJoint(EndlessArm([&](size_t) { return limits; }), move.from, move.to);
  EXPECT_NEAR(endless->At(along * endless->duration_s()).joints[1], upper, 1e-9);
  // Where there is room, the same braking is no fault; nor is a rounding at the end of the range.
  Set(move.from, 1, {upper + 1e-12});
  EXPECT_TRUE(PlanJoint(arm, move.from, move.to));
  Set(move.from, 1, {upper - passed - 1e-9, velocity, 0});
  EXPECT_TRUE(PlanJoint(arm, move.from, move.to));
}

// From rest over 2 rad at 1 rad/s, 2 rad/s^2 and 8 rad/s^3: ramps of 0.25 s jerk, 0.25 s hold and
// 0.25 s jerk, 1.25 s of cruise; 2.75 s. At a cycle of 0.2 s, that takes 14 cycles.
TEST(JointMove, HasAWholeNumberOfCyclesAndSaysWhatBinds) {
  ArmSettings settings;
  settings.cycle_s = 0.2;
  for (JointSettings& joint : settings.joints) {
    joint.velocity_rad_s = 1;
    joint.acceleration_rad_s2 = 2;
    joint.jerk_rad_s3 = 8;
  }
  const Arm arm = *Arm::FromSolver(Arm::Reference().solver(), settings);
  SeededMove move;
  move.to.joints = {2, 0.1};
  const auto motion = PlanJoint(arm, move.from, move.to);
  ASSERT_TRUE(motion);
  EXPECT_NEAR(motion->duration_s(), 2.75, 1e-12);
  const auto bindings = motion->bindings();
  const Binding expected[] = {{Limit::kJointVelocity, 0, 1.25 / 2.75, 0.75, 2},
                              {Limit::kJointJerk, 0, 1 / 2.75, 0, 0.25},
                              {Limit::kJointAcceleration, 0, 0.5 / 2.75, 0.25, 0.5}};
  ASSERT_EQ(bindings.size(), std::size(expected));
  for (size_t i = 0; i < bindings.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(bindings[i].limit, expected[i].limit);
    EXPECT_EQ(bindings[i].joint, 0);
    // A thousandth of a limit is reached a little before it is.
    EXPECT_NEAR(bindings[i].share, expected[i].share, 0.02);
    EXPECT_NEAR(bindings[i].begin_s, expected[i].begin_s, 0.02);
    EXPECT_NEAR(bindings[i].end_s, expected[i].end_s, 0.02);
  }

  const auto samples = Sampled(arm, *motion);
  ASSERT_TRUE(samples);
  ASSERT_EQ(samples->size(), 15u);
  EXPECT_EQ(samples->front().joints, move.from.joints);
  EXPECT_EQ(samples->back().joints, move.to.joints);
  const auto slower = PlanJoint(arm, move.from, move.to, {{}, 2.8});
  for (size_t i = 0; i < samples->size(); ++i) {
    const Sample& sample = (*samples)[i];
    EXPECT_DOUBLE_EQ(sample.time_s, 0.2 * static_cast<double>(i));
    EXPECT_EQ(sample.velocities, slower->At(sample.time_s).velocities);
    EXPECT_NEAR(sample.pose.position.x, Forward(arm, sample.joints)->position.x, 1e-15);
  }
}

}  // namespace
}  // namespace qal
