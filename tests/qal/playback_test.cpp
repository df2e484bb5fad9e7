#include <gtest/gtest.h>
#include <qal/plan/playback.h>
#include <qal/plan/sampled.h>
#include <qal/solve/kinematics.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "../../bench/seeded_programs.h"
#include "../../src/qal/plan/path_motion.h"
#include "../../src/qal/plan/played_run.h"
#include "seeded.h"

namespace {
size_t allocations = 0;
}
void* operator new(size_t size) {
  ++allocations;
  if (void* const block = std::malloc(size)) return block;
  throw std::bad_alloc();
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, size_t) noexcept { std::free(block); }

namespace qal {
namespace {

using bench::Random;

// Plays a motion with the looks between its samples that a user doesn't have.
class WatchedPlayer {
 public:
  WatchedPlayer(const ProgramMotion& motion, double from_s)
      : runs_(RunsOf(motion)),
        player_(PlayerOf(runs_, motion, from_s)),
        cycle_s_(CycleOf(motion)) {}

  // One cycle.
  void Play(double pace) {
    player_.SetPace(pace);
    player_.Decide();
    if (!player_.stands()) Look();
    const size_t block = player_.block();
    player_.Advance();
    if (player_.stands() || player_.block() != block) before_.reset();
  }

  const Player& player() const { return player_; }
  double planned_s() { return player_.planned_s(); }
  double most() const { return most_; }  // of a limit, as a multiple
  double jump() const { return jump_; }  // of place and speed from cycle to cycle

 private:
  void Look() {
    const PlayedRun& run = runs_[player_.block()];
    if (before_) {
      const PathMoment now = player_.Ahead(0).path;
      jump_ =
          std::max({jump_, std::fabs(now.s - before_->s), std::fabs(now.speed - before_->speed)});
    }
    constexpr int kLooks = 16;
    for (int i = 0; i <= kLooks; ++i) {
      PlayMoment at = player_.Ahead(cycle_s_ * i / kLooks);
      before_ = at.path;
      at.path.s = std::min(at.path.s, run.path.end());
      const PathSection& section = run.path.sections[run.path.SectionAt(at.path.s)];
      for (const NeededLimit& need : NeedsAt(run.path.joints.At(at.path.s), at.path, section)) {
        most_ = std::max(most_, need.part);
      }
    }
  }

  std::vector<PlayedRun> runs_;
  Player player_;
  double cycle_s_;
  std::optional<PathMoment> before_;
  double most_ = 0;
  double jump_ = 0;
};

// What a plan needs of its limits at twice the density of the looks at what is played of it.
double NeededBy(const ProgramMotion& motion) {
  WatchedPlayer plan(motion, 0);
  while (!plan.player().done()) plan.Play(1);
  WatchedPlayer between(motion, CycleOf(motion) / 32);
  while (!between.player().done()) between.Play(1);
  return std::max(plan.most(), between.most());
}

// From seeded moments: stop, stand, go on at factors that jump about, stop again, resume to the
// end.
TEST(Playback, KeepsLimitsAndPathFromAnyMoment) {
  const int stops = CountFromEnvironment("QAL_STOPS", 300);
  const std::vector<Arm> arms = SeededArms();
  constexpr int kOfProgram = 10;
  constexpr double kLongestS = 60;
  int done = 0;
  int exceeded = 0;
  for (unsigned seed = 20261125; done < stops; ++seed) {
    const Arm& arm = arms[seed % arms.size()];
    const auto motion = PlanProgram(arm, bench::SeededPrograms(arm, seed).Next().program);
    if (!motion || motion->duration_s() == 0 || motion->duration_s() > kLongestS) continue;
    const double allowed = std::max(1.001, NeededBy(*motion) + 1e-4);
    Random random(seed);
    for (int i = 0; i < kOfProgram; ++i, ++done) {
      SCOPED_TRACE("seed " + std::to_string(seed) + ", moment " + std::to_string(i));
      const double from_s = random(0, motion->duration_s());
      WatchedPlayer played(*motion, from_s);
      const auto stop = [&] {
        int cycles = 0;
        while (!played.player().at_rest() && ++cycles < 100000) played.Play(0);
        ASSERT_TRUE(played.player().at_rest());
      };
      stop();
      // What a user gets is the same.
      const auto stopped = Stop(*motion, from_s);
      ASSERT_TRUE(stopped);
      EXPECT_EQ(stopped->planned_s, played.planned_s());
      const Sample& last = stopped->trajectory.back();
      EXPECT_EQ(last.velocities, Joints{});
      EXPECT_EQ(last.accelerations, Joints{});
      const MotionState there = motion->At(stopped->planned_s);
      EXPECT_LE(LargestDifference(last.joints, there.joints), 1e-9);
      for (int change = 0; change < 5 && !played.player().done(); ++change) {
        const double factor = random(0, 1.2) < 0.2 ? 0 : std::min(1.0, random(0, 1.2));
        for (int cycle = random.Of(60); cycle >= 0; --cycle) played.Play(factor);
      }
      if (!played.player().done()) stop();
      int cycles = 0;
      while (!played.player().done() && ++cycles < 100000) played.Play(1);
      EXPECT_TRUE(played.player().done());
      // Between two looks, where a zone begins, a few need a little more.
      EXPECT_LE(played.most(), 1.05);
      exceeded += played.most() > allowed ? 1 : 0;
      EXPECT_LE(played.jump(), 1e-10);
    }
  }
  std::printf("%d moments, limits exceeded by more than 0.1 %% from %d\n", done, exceeded);
  EXPECT_LE(exceeded, 1 + done / 100);
}

// A line of 0.1 m at 0.05 m/s, its limits those of the tool alone: 1 m/s^2 and 10 m/s^3.
Program SlowLine(const Arm& arm) {
  const Joints joints = {0.3, -0.2, 0.4, 0.2, 1.2, 0.1};
  Pose to = *Forward(arm, joints);
  to.position.z -= 0.1;
  LineLimits limits;
  limits.speed_m_s = 0.05;
  return {joints, {LineStep{to, limits}, WaitStep{0.5}, JointStep{joints}}};
}

// Cruising at v, the jerk j takes the tool to rest in 2 sqrt(v / j) = 0.141 s. A time t after the
// start it takes 2 t to turn the acceleration around, and t to end it.
TEST(Playback, StopsInTheShortestTimeWhereThatIsKnown) {
  const Arm arm = Arm::Reference();
  const auto motion = PlanProgram(arm, SlowLine(arm));
  ASSERT_TRUE(motion);
  const auto cycles_of = [&](double at_s) { return Stop(*motion, at_s)->trajectory.size() - 1; };
  EXPECT_EQ(cycles_of(1), std::ceil(2 * std::sqrt(0.05 / 10) / 0.005));
  for (const double t : {0.004, 0.013, 0.031}) EXPECT_EQ(cycles_of(t), std::ceil(3 * t / 0.005));
  // In a wait the arm stands already, and it holds there.
  const double waits_s = motion->step_begins_s()[1] + 0.1;
  EXPECT_EQ(cycles_of(waits_s), 0U);
  EXPECT_NEAR(Resume(*motion, waits_s)->back().time_s, motion->duration_s() - waits_s, 0.01);
}

// Without a word it is the plan. At a factor, what moves takes as much longer, and waits don't.
TEST(Playback, PlaysThePlanAtAFactor) {
  const Arm arm = Arm::Reference();
  const auto motion = PlanProgram(arm, SlowLine(arm));
  ASSERT_TRUE(motion);
  const Trajectory plan = *Sampled(arm, *motion);
  const auto played = Override(*motion, [](double) { return 1; });
  ASSERT_TRUE(played);
  ASSERT_EQ(played->size(), plan.size());
  for (size_t i = 0; i < plan.size(); ++i) {
    EXPECT_LE(LargestDifference((*played)[i].joints, plan[i].joints), 1e-12);
    EXPECT_LE(LargestDifference((*played)[i].velocities, plan[i].velocities), 1e-10);
    EXPECT_LE(std::fabs((*played)[i].pose.position.z - plan[i].pose.position.z), 1e-12);
  }
  const double moves_s = motion->duration_s() - 0.5;
  const auto half = Override(*motion, [](double) { return 0.5; });
  EXPECT_NEAR(half->back().time_s, 2 * moves_s + 0.5, 0.011);
  // From 1 s on it slows down to a fifth, exactly.
  Playback playback(*motion, 1);
  playback.Override(0.2);
  Sample sample;
  for (int i = 0; i < 100; ++i) sample = playback.Next();
  const MotionState there = motion->At(playback.planned_s());
  for (size_t j = 0; j < 6; ++j) {
    EXPECT_NEAR(sample.velocities[j], 0.2 * there.velocities[j], 1e-12);
  }
  EXPECT_FALSE(playback.at_rest());
  EXPECT_EQ(Stop(*motion, NAN).error().error.reason, Reason::kNotFinite);
}

TEST(Playback, AllocatesNothingOnceItIsMade) {
  const Arm arm = Arm::Reference();
  const auto motion = PlanProgram(arm, SlowLine(arm));
  ASSERT_TRUE(motion);
  Playback playback(*motion);
  const size_t before = allocations;
  for (int i = 0; !playback.done() && i < 10000; ++i) {
    if (i % 200 == 100) playback.Stop();
    if (i % 200 == 199) playback.Resume();
    if (i % 70 == 0) playback.Override(i % 140 == 0 ? 0.3 : 1);
    (void)playback.Next();  // for what it allocates
  }
  EXPECT_TRUE(playback.done());
  EXPECT_EQ(allocations, before);
}

}  // namespace
}  // namespace qal
