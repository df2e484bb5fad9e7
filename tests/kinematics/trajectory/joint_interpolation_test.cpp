#include <climits>

#include "scripted_solver.h"

namespace {

constexpr double kUnit = 0.0001745329;

class JointMove : public ScriptedMove {
 protected:
  JointMove() { road_ = {start_}; }
  BoolOutcome Plan(const Joints& joints, int speed) {
    end_ = End(joints);
    return Captured([&] { return Ikfunc::CountCurvelLineToBuffer(start_, end_, &road_, speed); });
  }
};

// 0.5 rad are 28.6 steps of 0.01745329 rad, and 286.5 of a tenth of that. 174.532901 rad are
// 10000.00003 steps, but 9999.9997 of the step held as float.
TEST_F(JointMove, CountsWholeStepsOfTheLeadingJointAndTheEndPoint) {
  const std::tuple<Joints, int, int> cases[] = {
      {{}, 100, 1},
      {{kNan, 0.5, -0.1, 0, 0, 0}, 100, 29},
      {{0, 0, 0, 0, 0, -0.5}, 10, 287},
      {{174.532901}, 100, 10000},
      {{2147483647.5 * static_cast<float>(kUnit)}, 1, 0},  // no room for the end point
      {{0.5}, -100, 0}};
  for (const auto& [joints, speed, count] : cases) {
    EXPECT_EQ(Ikfunc::CountCurvelLineSize(start_, End(joints), speed), count) << joints[0];
  }
}

TEST_F(JointMove, FillsAnArrayAtEvenFractionsAndEndsWithTheEndPoint) {
  const RoadPoint end = End({1.0, -2.0, 0, 0, 0, 0.5});
  RoadPoint array[5];
  EXPECT_TRUE(Ikfunc::CountCurveLineToBuffer(start_, end, 4, array));
  for (int i = 0; i < 3; ++i) {  // the pose is the gantry's own
    const double x = 0.25 * i;
    EXPECT_EQ(All(array[i]), All(Waypoint(Pos(x, -2 * x, 0), {x, -2 * x, 0, 0, 0, x / 2})));
  }
  EXPECT_EQ(All(array[3]), All(end));
  EXPECT_EQ(All(array[4]), All(RoadPoint()));
  for (const int count : {0, INT_MIN}) {
    EXPECT_FALSE(Ikfunc::CountCurveLineToBuffer(start_, end, count, nullptr));
  }
  // Where forward kinematics fails, the element keeps the pose and the flag it had.
  FailForward();
  array[0] = Solved(Waypoint(Pos(1, 2, 3)), {9, 9, 9, 9, 9, 9});
  (void)Captured([&] { return Ikfunc::CountCurveLineToBuffer(start_, end, 2, array); });
  EXPECT_EQ(All(array[0]), All(Solved(Waypoint(Pos(1, 2, 3)), {0, 0, 0, 0, 0, 0})));
}

// Travel in ramp units, top speed 5: 15 up, 27.3 cruise in 5 steps, 14 down, and 1 to the end
// point. -0.005 is cut to -0.004999, towards zero.
TEST_F(JointMove, RampsUpCruisesAndRampsDown) {
  const Joints end = {0.01, -0.005, 0, 0, 0, 0};
  start_.ik_flag = true;
  const double cruise = Ikfunc::SectionNum(0.01) / kUnit - 30;
  for (const int speed : {10, 11}) {  // half of 11 is 5 as well
    EXPECT_EQ(Plan(end, speed), kSilentTrue);
    ASSERT_EQ(road_.size(), 16u);
    double units = 0.0;
    for (int i = 0; i < 15; ++i) {
      units += i <= 5 ? i : i <= 10 ? cruise / 5 : 16 - i;
      const double x = units * kUnit;
      const RoadPoint pose = Waypoint(Pos(x, -0.4999 * x, 0));
      ExpectNear(All(road_[i]), All(Solved(pose, {x, -0.4999 * x, 0, 0, 0, 0})), 1e-15);
    }
    EXPECT_EQ(All(road_.back()), All(end_));
  }
}

// 0.00035 is just above two units.
TEST_F(JointMove, TakesTheHighestRampThatFitsAShortTravelOrNone) {
  const std::pair<double, std::vector<double>> cases[] = {
      {0.003, {0, 0.00025, 0.00075, 0.0015, 0.00225, 0.00275}},
      {0.00035, {0, 0.000175}},
      {0.000349, {0}},
      {kNan, {0}}};
  for (const auto& [travel, expected] : cases) {
    EXPECT_EQ(Plan({0, 0, 0, travel, 0, 0}, 10), kSilentTrue);
    ASSERT_EQ(road_.size(), expected.size() + 1);
    for (size_t i = 0; i < expected.size(); ++i) {
      EXPECT_NEAR(road_[i].jointpos[3], expected[i], 1e-11);  // the cut's own digits
    }
    EXPECT_EQ(All(road_.back().position), All(end_.position));
  }
  EXPECT_EQ(All(road_[0]), All(start_));
}

TEST_F(JointMove, RefusesSpeedsWithoutARampAndTravelsWithoutACount) {
  for (const auto& [travel, speed] :
       {std::pair(1.0, 1), {1.0, -10}, {1.0, INT_MIN}, {1e12, 10}, {INFINITY, 10}}) {
    EXPECT_EQ(Plan({travel}, speed), kSilentFalse);
  }
  EXPECT_EQ(road_.size(), 1u);
}

}  // namespace
