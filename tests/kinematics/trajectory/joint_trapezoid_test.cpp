#include <climits>

#include "scripted_solver.h"

namespace {

TEST(Trapezoid, CountsNoCyclesWhereThereAreNone) {
  EXPECT_EQ(Ikfunc::countmaxruntime(kNan, 1500, 10000, 0.005, 363), 0);
  EXPECT_EQ(Ikfunc::countmaxruntime(0.01, 0, 10000, 0.005, 363), 0);
  EXPECT_EQ(Ikfunc::countmaxruntime(0.01, 1500, 0, 0.005, 363), 0);
  EXPECT_EQ(Ikfunc::caltimeslover(10, 1.0, 0.005, 363, 10000), -1);
  EXPECT_EQ(Ikfunc::caltimeslover(492, kNan, 0.005, 363, 10000), -1);
  EXPECT_EQ(Ikfunc::caltimeslover(492, 0.5, 0.005, 363, 0), -1);
}

TEST(Trapezoid, DefinesTheStepsWhereNoRampIsLeft) {
  std::vector<double> steps(10);
  Ikfunc::getJointStepLength(1.0f, 10, 10, 4, steps.data(), 1);  // all cruise
  EXPECT_EQ(steps[9], 0.1);
  Ikfunc::getJointStepLength(1.0f, 1, 0, 0, steps.data(), 1);
  EXPECT_EQ(steps[0], 1.0);
  Ikfunc::getJointStepLength(1.0f, 0, INT_MAX, 0, nullptr, 1);
}

class JointRun : public ScriptedMove {
 protected:
  JointRun() { road_ = {start_}; }
  BoolOutcome Plan(const Joints& joints, int speed, int acc) {
    end_ = End(joints);
    return Captured(
        [&] { return Ikfunc::CountRunCurvelLineToBuffer(start_, end_, &road_, speed, acc); });
  }
};

// 2 * 30 cycles on the ramps and (0.3 - 0.0777616) / 0.002592054 = 85.7 at speed; more than a
// run may have, but counted. The dead bands are 4.22584e-06 and 5.06242e-06 rad, and just above
// them sqrt(4 * d / g) is 4.9.
TEST_F(JointRun, TakesTheCyclesOfTheSlowerGroup) {
  const std::tuple<Joints, int, int, int> cases[] = {
      {{0.01, 0, 0, 0, 0, -0.3}, 50, 10000, 145}, {{3.0, kNan}, 1, 10000, 69328},
      {{4.2e-06, 0, 0, 5e-06, 0, 0}, 50, 100, 0}, {{4.3e-06}, 50, 100, 4},
      {{0, 0, 0, 5.1e-06, 0, 0}, 50, 100, 4},     {{INFINITY}, 50, 10000, 0}};
  for (const auto& [end, speed, acc, cycles] : cases) {
    EXPECT_EQ(Ikfunc::CountRunCurvelLineSize(RoadPoint(), End(end), speed, acc), cycles) << end[0];
  }
}

TEST_F(JointRun, ArrivesWithAllJointsAtOnceButHoldsOneInItsDeadBand) {
  start_ = Solved(start_, {0, 0, 0.25, 0.75, 0, 0});
  const Joints end = {1.0, 0.5, 0.25, 0.75 + 4e-06, 0, -0.3};
  EXPECT_EQ(Plan(end, 50, 10000), BoolOutcome(true, "the joint num is492\n", ""));
  ASSERT_EQ(road_.size(), 492u);
  EXPECT_EQ(road_[490].jointpos[3], 0.75);
  EXPECT_EQ(All(road_.back()), All(end_));
}

// An even triangle of sqrt(4 * d / g) cycles, g = 0.005 * 10000 * 0.000523595 / 363.
TEST_F(JointRun, IsJustTheEndPointsUpToFiveCycles) {
  const double g = 0.005 * 10000 * 0.000523595 / 363;
  for (const double root : {4.1, 0.0}) {
    const double travel = root * root / 4 * g;
    EXPECT_EQ(std::get<1>(Plan({travel}, 50, 10000)),
              std::string("the all joint count is true") + (root > 0 ? "4\n" : "0\n"));
    EXPECT_EQ(All(road_), All({start_, end_}));
  }
  EXPECT_EQ(std::get<1>(Plan({5.1 * 5.1 / 4 * g}, 50, 10000)), "the joint num is6\n");
  // 30 rpm at 6000 rpm/s: a ramp cycle up and down in 4.327e-05 rad, and 3.5 times that to cruise.
  EXPECT_EQ(std::get<1>(Plan({4.5 * 4.3272e-05}, 1, 6000)), "the all joint count is true5\n");
}

// 69328 cycles are more than can be planned; 23109 are not.
TEST_F(JointRun, RefusesWhatHasNoPlanAndKeepsAStrangeJointStill) {
  EXPECT_EQ(Plan({3.0}, 1, 10000), kSilentFalse);
  EXPECT_EQ(Plan({1.0}, 0, 10000), kSilentFalse);
  EXPECT_EQ(road_.size(), 1u);
  EXPECT_TRUE(std::get<0>(Plan({1.0, kNan, 0, 0, 0, 0}, 1, 10000)));
  ASSERT_EQ(road_.size(), 23109u);
  EXPECT_EQ(road_[23107].jointpos[1], 0.0);
  // Where forward kinematics fails, the pose before it stands.
  FailForward();
  (void)Plan({1.0}, 50, 10000);
  EXPECT_EQ(All(road_[490].position), All(Pos(4, 5, 6)));
}

}  // namespace
