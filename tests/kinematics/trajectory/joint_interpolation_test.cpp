#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "captured.h"
#include "kinematics/ikfunc.h"
#include "scripted_solver.h"
#include "waypoints.h"

namespace {

constexpr double kUnit = 0.0001745329;

class JointMove : public ScriptedSolver {
 protected:
  // From zero; the end has a pose of its own, which has to come out as it is.
  static RoadPoint End(const Joints& joints) { return Waypoint(Pos(7, 8, 9), joints); }

  bool Plan(const Joints& end, int speed) {
    const auto [result, out, err] =
        Captured([&] { return Ikfunc::CountCurvelLineToBuffer(start, End(end), &road, speed); });
    EXPECT_EQ(out + err, "");
    return result;
  }

  RoadPoint start = Waypoint(Pos(4, 5, 6));
  std::vector<RoadPoint> road{Waypoint(Pos(1, 2, 3))};
};

// 0.5 rad are 28.6 steps of 0.01745329 rad, and 286.5 of a tenth of that.
TEST_F(JointMove, CountsWholeStepsOfTheLeadingJointAndTheEndPoint) {
  constexpr int kMax = std::numeric_limits<int>::max();
  const std::tuple<Joints, int, int> cases[] = {
      {{}, 100, 1},
      {{0.5, -0.1, 0, 0, 0, 0}, 100, 29},
      {{0, 0, 0, 0, 0, -0.5}, 10, 287},
      {{kNan, 0.5, 0, 0, 0, 0}, 100, 29},
      {{174.532901}, 100, 10000},  // 10000.00003 steps, but 9999.9997 of the step held as float
      {{0.5}, 0, 0},
      {{0.5}, -100, 0},
      {{1e12}, 1, 0},  // does not fit an int
      {{kInfinity}, 100, 0},
      {{0.5}, kMax, 1},
  };
  for (const auto& [joints, speed, count] : cases) {
    EXPECT_EQ(Ikfunc::CountCurvelLineSize(start, End(joints), speed), count)
        << joints[0] << " at " << speed;
  }
}

TEST_F(JointMove, FillsAnArrayAtEvenFractionsAndEndsWithTheEndPoint) {
  const RoadPoint end = End({1.0, -2.0, 0, 0, 0, 0.5});
  RoadPoint array[5];
  for (RoadPoint& element : array) element.ik_flag = true;
  EXPECT_TRUE(Ikfunc::CountCurveLineToBuffer(start, end, 4, array));
  for (int i = 0; i < 3; ++i) {
    const RoadPoint& point = array[i];
    EXPECT_EQ(point.jointpos[0], 0.25 * i);
    EXPECT_EQ(point.jointpos[1], -0.5 * i);
    EXPECT_EQ(All(point.position), All(Pos(0.25 * i, -0.5 * i, 0)));  // the gantry's own
    EXPECT_TRUE(point.ik_flag);
  }
  EXPECT_EQ(All(array[3]), All(end));
  EXPECT_EQ(array[4].position.x, 0.0);

  EXPECT_TRUE(Ikfunc::CountCurveLineToBuffer(start, end, 1, array));
  EXPECT_EQ(All(array[0]), All(end));
  for (const int count : {0, -1, std::numeric_limits<int>::min()}) {
    EXPECT_FALSE(Ikfunc::CountCurveLineToBuffer(start, end, count, nullptr));
  }
  // Where forward kinematics fails, the element keeps the pose it had.
  script.forward = [](const Joints&) { return SolverPose{kNan, kNan, kNan, kNan}; };
  array[0] = Waypoint(Pos(1, 2, 3));
  (void)Captured([&] { return Ikfunc::CountCurveLineToBuffer(start, end, 2, array); });
  EXPECT_EQ(All(array[0]), All(Waypoint(Pos(1, 2, 3))));
}

// Travel in ramp units, top speed 5: 15 up, 27.3 cruise in 5 steps, 14 down, and 1 to the end
// point.
TEST_F(JointMove, RampsUpCruisesAndRampsDown) {
  start.ik_flag = true;
  ASSERT_TRUE(Plan({0.01, -0.005, 0, 0, 0, 0}, 10));
  const double travel = Ikfunc::SectionNum(0.01);
  const double cruise = (travel - 30 * kUnit) / 5;
  std::vector<double> expected;
  for (const double units : {0, 1, 3, 6, 10, 15}) expected.push_back(units * kUnit);
  for (int i = 0; i < 5; ++i) expected.push_back(expected.back() + cruise);
  for (const double units : {5, 4, 3, 2}) expected.push_back(expected.back() + units * kUnit);
  ASSERT_EQ(road.size(), expected.size() + 1);
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(road[i].jointpos[0], expected[i], 1e-15);
    // -0.005 is cut to -0.004999, towards zero.
    EXPECT_NEAR(road[i].jointpos[1], -0.4999 * expected[i], 1e-15);
    EXPECT_EQ(road[i].jointpos[2], 0.0);
    EXPECT_EQ(road[i].position.x, road[i].jointpos[0]);
    EXPECT_TRUE(road[i].ik_flag);
  }
  EXPECT_EQ(All(road.back()), All(End({0.01, -0.005, 0, 0, 0, 0})));

  const std::vector<RoadPoint> at_ten = road;
  ASSERT_TRUE(Plan({0.01, -0.005, 0, 0, 0, 0}, 11));  // half of 11 is 5 as well
  ASSERT_EQ(road.size(), at_ten.size());
  for (size_t i = 0; i < road.size(); ++i) EXPECT_EQ(All(road[i]), All(at_ten[i]));
}

TEST_F(JointMove, TakesTheHighestRampThatFitsAShortTravelOrNone) {
  const std::pair<double, std::vector<double>> cases[] = {
      {0.003, {0, 0.00025, 0.00075, 0.0015, 0.00225, 0.00275}},
      {0.0004, {0, 0.0002}},
      {0.00035, {0, 0.000175}},  // just above two units
  };
  for (const auto& [travel, expected] : cases) {
    ASSERT_TRUE(Plan({0, 0, 0, travel, 0, 0}, 10));
    ASSERT_EQ(road.size(), expected.size() + 1);
    for (size_t i = 0; i < expected.size(); ++i) {
      EXPECT_NEAR(road[i].jointpos[3], expected[i], 1e-11);  // the cut's own digits
    }
  }
  for (const double travel : {0.0, 0.000349, kNan}) {
    ASSERT_TRUE(Plan({travel}, 10));
    ASSERT_EQ(road.size(), 2u);
    EXPECT_EQ(All(road[0]), All(start));
    EXPECT_EQ(All(road[1].position), All(Pos(7, 8, 9)));
  }
}

TEST_F(JointMove, RefusesSpeedsWithoutARampAndTravelsWithoutACount) {
  for (const int speed : {1, 0, -1, -10, std::numeric_limits<int>::min()}) {
    EXPECT_FALSE(Plan({1.0}, speed));
  }
  EXPECT_FALSE(Plan({1e12}, 10));
  EXPECT_FALSE(Plan({kInfinity}, 10));
  EXPECT_EQ(road.size(), 1u);
}

}  // namespace
