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

TEST_F(JointMove, FillsAnArrayAndEndsWithTheEndPoint) {
  const RoadPoint end = End({1.0});
  RoadPoint array[3];
  EXPECT_TRUE(Ikfunc::CountCurveLineToBuffer(start_, end, 2, array));
  EXPECT_EQ(All({array, array + 3}), All({Waypoint(Pos(), {}), end, RoadPoint()}));
  for (const int count : {0, INT_MIN}) {
    EXPECT_FALSE(Ikfunc::CountCurveLineToBuffer(start_, end, count, nullptr));
  }
  // Where forward kinematics fails, the element keeps the pose and the flag it had.
  FailForward();
  array[0] = Solved(Waypoint(Pos(1, 2, 3)), {9, 9, 9, 9, 9, 9});
  (void)Captured([&] { return Ikfunc::CountCurveLineToBuffer(start_, end, 2, array); });
  EXPECT_EQ(All(array[0]), All(Solved(Waypoint(Pos(1, 2, 3)), {0, 0, 0, 0, 0, 0})));
}

TEST_F(JointMove, RefusesSpeedsWithoutARampAndTravelsWithoutACount) {
  for (const auto& [travel, speed] :
       {std::pair(1.0, 1), {1.0, -10}, {1.0, INT_MIN}, {1e12, 10}, {INFINITY, 10}}) {
    EXPECT_EQ(Plan({travel}, speed), kSilentFalse);
  }
  EXPECT_EQ(road_.size(), 1u);
  // No travel above two units, or none that counts: the end points.
  for (const auto& [travel, count] : {std::pair(0.000349, 2u), {0.00035, 3u}, {kNan, 2u}}) {
    EXPECT_EQ(Plan({0, 0, 0, travel, 0, 0}, 10), kSilentTrue);
    EXPECT_EQ(road_.size(), count);
    EXPECT_EQ(All(road_.back().position), All(end_.position));
  }
}

}  // namespace
