#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>

#include "captured.h"
#include "kinematics/ikfunc.h"
#include "private_members.h"
#include "scripted_solver.h"
#include "waypoints.h"

namespace {

constexpr int kMax = std::numeric_limits<int>::max();

TEST(Trapezoid, CountsTheCyclesOfOneJoint) {
  // 1500 rpm at 10000 rpm/s: 30 ramp cycles. 1 rad is 2 * 30 + 432, 0.01 rad an even triangle.
  EXPECT_EQ(hidden::countmaxruntime(1.0, 1500, 10000, 0.005, 363), 492);
  EXPECT_EQ(hidden::countmaxruntime(0.01, 1500, 10000, 0.005, 363), 24);
  EXPECT_EQ(hidden::countmaxruntime(1.0, 1500, 0, 0.005, 363), 0);
  EXPECT_EQ(hidden::countmaxruntime(1.0, 0, 10000, 0.005, 363), 0);
  EXPECT_EQ(hidden::countmaxruntime(kNan, 1500, 10000, 0.005, 363), 0);

  EXPECT_EQ(hidden::caltimeslover(492, 1.0, 0.005, 363, 10000), 431);
  EXPECT_EQ(hidden::caltimeslover(492, 0.5, 0.005, 363, 10000), 462);
  EXPECT_EQ(hidden::caltimeslover(492, 0.3, 0.005, 303, 10000), 477);
  EXPECT_EQ(hidden::caltimeslover(10, 1.0, 0.005, 363, 10000), -1);
  EXPECT_EQ(hidden::caltimeslover(492, kNan, 0.005, 363, 10000), -1);
  EXPECT_EQ(hidden::caltimeslover(kMax, 1.0, 0.005, 363, 0), -1);
}

// (joint, cycles, cruise) and the ramp cycles that come of it.
TEST(Trapezoid, SplitsATravelIntoStepsThatRiseCruiseAndFall) {
  struct Case {
    int joint, cycles, cruise, ramp, level;
  };
  const Case cases[] = {{0, 492, 431, 31, 430}, {5, 492, 462, 15, 462}, {7, 60, 0, 30, 0}};
  for (const auto& [joint, cycles, cruise, ramp, level] : cases) {
    std::vector<double> steps(cycles + 1, 99.0);
    hidden::getJointStepLength(-0.7f, cycles, cruise, joint, steps.data(), 1);
    EXPECT_EQ(steps.back(), 99.0);
    steps.pop_back();
    EXPECT_NEAR(std::accumulate(steps.begin(), steps.end(), 0.0), double{0.7f}, 1e-13);
    // The motor's acceleration in rpm per cycle, then every step from the motion it means.
    const double q = joint <= 2 ? 1.4424104683195595e-06 : 1.7280363036303633e-06;
    const double acc = double{0.7f} / (q * ramp * (ramp + level));
    for (int i = 0; i < ramp; ++i) {
      EXPECT_NEAR(steps[i], (i + 0.5) * acc * q, 1e-15);
      EXPECT_EQ(steps[cycles - 1 - i], steps[i]);
    }
    for (int i = ramp; i < ramp + level; ++i) EXPECT_NEAR(steps[i], ramp * acc * q, 1e-15);
  }
}

TEST(Trapezoid, DefinesTheStepsWhereNoRampIsLeft) {
  // An odd count without a cruise: 31 up, 30 down, too long by 0.5 / (31 * 30).
  std::vector<double> steps(61);
  hidden::getJointStepLength(1.0f, 61, 0, 0, steps.data(), 1);
  EXPECT_NEAR(std::accumulate(steps.begin(), steps.end(), 0.0), 1 + 0.5 / (31 * 30), 1e-13);
  EXPECT_EQ(steps[60], steps[0]);
  EXPECT_EQ(steps[31], steps[29]);
  // All cruise, and a single cycle: even steps. No cycle: nothing written.
  hidden::getJointStepLength(1.0f, 10, 10, 4, steps.data(), 1);
  EXPECT_EQ(steps[9], 0.1);
  hidden::getJointStepLength(1.0f, 1, 0, 0, steps.data(), 1);
  EXPECT_EQ(steps[0], 1.0);
  for (const int count : {0, -1, -kMax - 1}) {
    hidden::getJointStepLength(1.0f, count, kMax, 0, nullptr, 1);
  }
}

class JointRun : public ScriptedSolver {
 protected:
  static RoadPoint End(const Joints& joints) { return Waypoint(Pos(7, 8, 9), joints); }
  static int Size(const Joints& joints, int speed, int acc) {
    return Ikfunc::CountRunCurvelLineSize(RoadPoint(), End(joints), speed, acc);
  }
  Outcome<bool> Plan(const Joints& joints, int speed, int acc) {
    return Captured(
        [&] { return Ikfunc::CountRunCurvelLineToBuffer(start, End(joints), &road, speed, acc); });
  }

  RoadPoint start = Waypoint(Pos(4, 5, 6));
  std::vector<RoadPoint> road{Waypoint(Pos(1, 2, 3))};
};

TEST_F(JointRun, TakesTheCyclesOfTheSlowerGroup) {
  // Joint 1 needs 492, joint 6 alone 2 * 30 + trunc((0.3 - 0.0777616) / 0.002592054) = 145.
  EXPECT_EQ(Size({1.0, 0.5, 0, 0, 0, -0.3}, 50, 10000), 492);
  EXPECT_EQ(Size({0, 0, 0, 0, 0, -0.3}, 50, 10000), 145);
  EXPECT_EQ(Size({0.01, 0, 0, 0, 0, -0.3}, 50, 10000), 145);
  EXPECT_EQ(Size({1.0}, 1, 10000), 23109);
  EXPECT_EQ(Size({3.0}, 1, 10000), 69328);  // longer than a run may be, but counted
  // Dead bands: 4.22584e-06 and 5.06242e-06 rad. Just above, sqrt(4 * d / g) is 4.9.
  EXPECT_EQ(Size({4.2e-06, 0, 0, 5e-06, 0, 0}, 50, 100), 0);
  EXPECT_EQ(Size({4.3e-06}, 50, 100), 4);
  EXPECT_EQ(Size({0, 0, 0, 5.1e-06, 0, 0}, 50, 100), 4);
  EXPECT_EQ(Size({kNan}, 50, 10000), 0);
  const std::tuple<double, int, int> outside[] = {
      {1.0, 0, 10000}, {1.0, -1, 10000}, {1.0, 50, 0}, {1.0, 50, -1}, {kInfinity, 50, 10000}};
  for (const auto& [travel, speed, acc] : outside) EXPECT_EQ(Size({travel}, speed, acc), 0);
  EXPECT_GT(Size({1.0}, kMax, 1), 0);
}

TEST_F(JointRun, ArrivesWithAllJointsAtOnce) {
  start.ik_flag = true;
  start.jointpos[2] = 0.25;
  start.jointpos[3] = 0.75;
  const Joints end = {1.0, 0.5, 0.25, 0.75 + 4e-06, 0, -0.3};
  EXPECT_EQ(Plan(end, 50, 10000), Outcome<bool>(true, "the joint num is492\n", ""));
  ASSERT_EQ(road.size(), 492u);
  double last[6] = {0, 0, 0.25, 0.75, 0, 0};
  for (int i = 0; i < 491; ++i) {
    const RoadPoint& point = road[i];
    EXPECT_GT(point.jointpos[0], last[0]);
    EXPECT_GT(point.jointpos[1], last[1]);
    EXPECT_LT(point.jointpos[5], last[5]);
    for (const int j : {2, 3, 4}) EXPECT_EQ(point.jointpos[j], last[j]);  // inside its dead band
    EXPECT_EQ(point.position.x, point.jointpos[0]);
    EXPECT_TRUE(point.ik_flag);
    std::copy(point.jointpos, point.jointpos + 6, last);
  }
  ExpectNear(Joints{last[0], last[1], last[2], last[3], last[4], last[5]},
             Joints{0.999965, 0.499965, 0.25, 0.75, 0, -0.299961}, 1e-6);
  EXPECT_EQ(All(road.back()), All(End(end)));
  // Joint 1: 31 ramp cycles and 430 at speed, so the first step is 0.5 / (31 * 461).
  EXPECT_NEAR(road[0].jointpos[0], 0.5 / (31 * 461), 1e-12);
}

TEST_F(JointRun, IsJustTheEndPointsUpToFiveCycles) {
  // An even triangle of sqrt(4 * d / g) cycles, g = 0.005 * 10000 * 0.000523595 / 363.
  const double g = 0.005 * 10000 * 0.000523595 / 363;
  for (const auto& [travel, cycles] :
       {std::pair{0.0, 0}, std::pair{4.1 * 4.1 / 4 * g, 4}, std::pair{5.1 * 5.1 / 4 * g, 6}}) {
    const auto [result, out, err] = Plan({travel}, 50, 10000);
    EXPECT_TRUE(result);
    if (cycles > 5) {
      EXPECT_EQ(out, "the joint num is6\n");
      EXPECT_EQ(road.size(), 6u);
      continue;
    }
    EXPECT_EQ(out, "the all joint count is true" + std::to_string(cycles) + "\n");
    ASSERT_EQ(road.size(), 2u);
    EXPECT_EQ(All(road[0]), All(start));
    EXPECT_EQ(All(road[1]), All(End({travel})));
  }
  // 30 rpm at 6000 rpm/s: a ramp cycle up and down in 4.327e-05 rad, and 3.5 times that to cruise.
  EXPECT_EQ(std::get<1>(Plan({4.5 * 4.3272e-05}, 1, 6000)), "the all joint count is true5\n");
}

TEST_F(JointRun, RefusesWhatHasNoPlanAndKeepsAStrangeJointStill) {
  // 69328 cycles are more than can be planned; 23109 are not.
  EXPECT_EQ(Plan({3.0}, 1, 10000), Outcome<bool>(false, "", ""));
  EXPECT_EQ(Plan({1.0}, 0, 10000), Outcome<bool>(false, "", ""));
  EXPECT_EQ(Plan({1.0}, 50, 0), Outcome<bool>(false, "", ""));
  EXPECT_EQ(Plan({kInfinity}, 50, 10000), Outcome<bool>(false, "", ""));
  EXPECT_EQ(road.size(), 1u);
  EXPECT_TRUE(std::get<0>(Plan({1.0}, 1, 10000)));
  EXPECT_EQ(road.size(), 23109u);
  EXPECT_TRUE(std::get<0>(Plan({1.0, kNan, 0, 0, 0, 0}, 50, 10000)));
  EXPECT_EQ(road[200].jointpos[1], 0.0);
  // Where forward kinematics fails, the pose before it stands.
  script.forward = [](const Joints&) { return SolverPose{kNan, kNan, kNan, kNan}; };
  (void)Plan({1.0}, 50, 10000);
  EXPECT_EQ(All(road[490].position), All(Pos(4, 5, 6)));
}

}  // namespace
