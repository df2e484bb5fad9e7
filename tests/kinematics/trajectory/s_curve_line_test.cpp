#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "captured.h"
#include "kinematics/ikfunc.h"
#include "private_members.h"
#include "scripted_solver.h"
#include "waypoints.h"

namespace {

constexpr char kNotice[] = "can't go to mast ver!\n";
constexpr char kStepError[] = "Check Robot Joint Step Error!\n";
constexpr char kTooSmall[] = "max_acc is too small can't reach!\n";
constexpr char kUnsolved[] = "Failed to get  ik solution ArmJointIK \n";

// 3000 rpm move joints 1 to 3 by 3000 * 1.04719e-05 * 50 / 363 = 0.0043272314 rad a cycle, joints 4
// to 6 by 0.0051841089.
TEST(JointStepCheck, TellsTheFirstJointThatIsTooFastAndItsOwnLimit) {
  const double limit = 3000 * 1.04719e-05 * 50 / 363;
  struct Case {
    Joints step;
    int rpm;
    std::string said;
  };
  const Case cases[] = {
      {{0.004, 0, 0, 0, 0, 0.005}, 3000, ""},
      {{limit, -limit, 0, 0, 0, 0}, 3000, ""},
      {{std::nextafter(limit, 1.0), 0, 0, 0, 0, 0},
       3000,
       "the big diff is0.00432723\nmax speed step0.00432723\n"},
      {{0.0044, 0, 0, 0, 0, 0}, 3000, "the big diff is0.0044\nmax speed step0.00432723\n"},
      {{0, 0, 0, 0, 0, -0.0052}, 3000, "the small diff is0.0052\nmax speed step0.00518411\n"},
      {{0, 0, 0, 0.1, 0, 0}, 3000, "the small diff is0.1\nmax speed step0.00518411\n"},
      {{0, 0.1, 0, 0, 0.2, 0}, 3000, "the big diff is0.1\nmax speed step0.00432723\n"},
      {{kNan, 0, 0, 0, kNan, 0}, 3000, ""},
      {{}, 0, ""},
      {{}, -1000, "the big diff is0\nmax speed step-0.00144241\n"},
  };
  for (const Case& c : cases) {
    RoadPoint from;
    RoadPoint to = Waypoint(Pos(), c.step);
    EXPECT_EQ(Captured([&] { return hidden::CheckRobotJointStep(from, to, c.rpm); }),
              Outcome<bool>(c.said.empty(), c.said, ""));
  }
}

// The gantry's joints 1 to 3 are the coordinates.
class SCurveLine : public ScriptedSolver {
 protected:
  // The outcome of a line along x, into `road`.
  Outcome<int> Plan(double length, float acc, float jerk, int rpm = 3000) {
    const RoadPoint start = Waypoint(Pos(0.1, 0.2, 0.3), {0.1, 0.2, 0.3});
    const RoadPoint end = Waypoint(Pos(0.1 + length, 0.2, 0.3), {0.1 + length, 0.2, 0.3});
    return Captured([&] {
      return Ikfunc::CountSRunCurvelLineToBuffer(start, end, &road, 1.0f, acc, jerk, rpm);
    });
  }

  std::vector<RoadPoint> road{Waypoint(Pos(7, 8, 9))};
};

// 2 * 10 * t^3 = 0.01 at t = 0.0794 s: 15 samples of 5 ms, at 10 * t^3 / 6 along the line.
TEST_F(SCurveLine, AppendsItsFirstPhase) {
  EXPECT_EQ(Plan(0.01, 1.0f, 10.0f), Outcome<int>(1, "", kNotice));
  ASSERT_EQ(road.size(), 16u);
  EXPECT_EQ(road[0].position.x, 7.0);
  for (int i = 1; i <= 15; ++i) {
    const double t = 5 * i / 1000.0;
    EXPECT_DOUBLE_EQ(road[i].position.x, 10.0 * t * t * t / 6 + 0.1);
    EXPECT_EQ(road[i].jointpos[0], road[i].position.x);
    EXPECT_TRUE(road[i].ik_flag);
  }
  EXPECT_NEAR(road[15].position.x - 0.1, 0.0703125 * 0.01, 1e-16);
}

TEST_F(SCurveLine, TurnsTheToolAlongTheEulerDifferenceTheLongWayToo) {
  // Yaw from 3 to -3 goes by -6, not by +0.28.
  const RoadPoint start = Waypoint(Pos(), {}, Ori(std::cos(1.5), 0, 0, std::sin(1.5)));
  const RoadPoint end = Waypoint(Pos(0.01, 0, 0), {}, Ori(std::cos(1.5), 0, 0, -std::sin(1.5)));
  (void)Captured(
      [&] { return Ikfunc::CountSRunCurvelLineToBuffer(start, end, &road, 0, 1, 10, 3000); });
  ASSERT_EQ(road.size(), 16u);
  const double yaw = 3 - 6 * 0.0703125;
  ExpectNear(All(road[15].orientation), {std::cos(yaw / 2), 0, 0, std::sin(yaw / 2)}, 1e-15);
}

TEST_F(SCurveLine, AnswersALineBelowTheShortestProfileWithItsEndPoints) {
  const std::string said = "Smin distance is0.00016\nlength distance is0.0001\n";
  EXPECT_EQ(Plan(0.0001, 1.0f, 10.0f), Outcome<int>(1, said, ""));
  ASSERT_EQ(road.size(), 2u);
  EXPECT_EQ(road[1].position.x, 0.1 + 0.0001);
  // At the caller's motor speed, not at twice that: 1e-4 rad needs 69.3 rpm.
  EXPECT_EQ(
      Plan(0.0001, 1.0f, 10.0f, 69),
      Outcome<int>(-1, said + "the big diff is0.0001\nmax speed step9.95263e-05\n", kStepError));
  EXPECT_EQ(road.size(), 2u);
  EXPECT_EQ(std::get<0>(Plan(0.0001, 1.0f, 10.0f, 70)), 1);
  // Exactly the shortest profile, 2 * jerk * (0.02 s)^3 in single precision.
  const double shortest = double{2.0f * 10.0f * 0.02f * 0.02f * 0.02f};
  const RoadPoint end = Waypoint(Pos(0, shortest, 0));
  (void)Captured([&] {
    return Ikfunc::CountSRunCurvelLineToBuffer(Waypoint(Pos()), end, &road, 0, 1, 10, 3000);
  });
  EXPECT_EQ(road.size(), 2u);
}

TEST_F(SCurveLine, RefusesLimitsThatMakeNoProfile) {
  constexpr float kInf = std::numeric_limits<float>::infinity();
  constexpr float kNone = std::numeric_limits<float>::quiet_NaN();
  struct Case {
    float acc;
    float jerk;
    const char* said;
  };
  const Case cases[] = {
      {0.1f, 10, kTooSmall},  // 10 ms
      {0.2f, 10, kTooSmall},  // 20 ms
      {0, 10, kTooSmall},    {-1, 10, kTooSmall}, {1, -10, kTooSmall}, {-1, -10, ""}, {1, 0, ""},
      {kNone, 10, ""},       {1, kNone, ""},      {kInf, 10, ""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Plan(0.01, c.acc, c.jerk), Outcome<int>(-2, "", c.said)) << c.acc << ' ' << c.jerk;
  }
  // A phase of (0.5 * 0.5 / 1e-21)^(1/3) s is no int of milliseconds.
  EXPECT_EQ(Plan(0.5, 1e-17f, 1e-21f), Outcome<int>(-2, "", ""));
  EXPECT_EQ(Plan(kNan, 1, 10), Outcome<int>(-2, "", ""));
  EXPECT_EQ(road.size(), 1u);
}

// A build-up of 100 ms at a jerk of 1e-7 makes 2e-7 * 100^3 = 0.2 m the longest line.
TEST_F(SCurveLine, WritesNothingForALineLongEnoughForConstantAcceleration) {
  EXPECT_EQ(Plan(0.3, 1e-8f, 1e-7f), Outcome<int>(1, "", ""));
  EXPECT_EQ(road.size(), 1u);
}

TEST_F(SCurveLine, StopsAtAJointStepAboveTwiceTheMotorSpeed) {
  // The steps grow: i^3 - (i - 1)^3 of 10 / 6 * 0.005^3 = 2.0833e-7 m. Twice 10 rpm allow 2.885e-5,
  // which the 7th step (127 of them) holds and the 8th (169) does not.
  const auto [result, out, err] = Plan(0.01, 1.0f, 10.0f, 10);
  EXPECT_EQ(result, -1);
  EXPECT_EQ(out, "the big diff is3.52083e-05\nmax speed step2.88482e-05\n");
  EXPECT_EQ(err, std::string(kNotice) + kStepError);
  EXPECT_TRUE(road.empty());
  for (const int rpm : {std::numeric_limits<int>::max(), 2000000000}) {
    EXPECT_EQ(std::get<0>(Plan(0.01, 1.0f, 10.0f, rpm)), 1);
  }
}

TEST_F(SCurveLine, HoldsTheJointsWhereAPointHasNoSolution) {
  script.answers = {Found({{}}), Found({{}}), Nothing(), Nothing()};
  const auto [result, out, err] = Plan(0.01, 1.0f, 10.0f);
  EXPECT_EQ(result, 1);
  EXPECT_EQ(err, std::string(kNotice) + kUnsolved);
  ASSERT_EQ(road.size(), 16u);
  EXPECT_EQ(road[1].jointpos[0], 0.1);
  EXPECT_EQ(road[2].jointpos[0], road[2].position.x);
}

TEST_F(SCurveLine, NeedsBothEndPointsInReachAndAsksForTheSecondOnlyThen) {
  const std::string ends = "s_point and e_point Ik error!\n";
  script.answers = {Nothing(), Nothing(), Nothing()};
  EXPECT_EQ(Plan(0.01, 1.0f, 10.0f), Outcome<int>(-1, "ARM IK is error\n", kUnsolved + ends));
  EXPECT_EQ(script.asked.size(), 3u);
  script.answers = {Found({{}}), Nothing(), Nothing(), Nothing()};
  EXPECT_EQ(Plan(0.01, 1.0f, 10.0f), Outcome<int>(-1, "ARM IK is error\n", kUnsolved + ends));
  EXPECT_EQ(road.size(), 1u);
  // An end that the solver refuses gives way to its own joints, nudged: the line runs from there.
  script.answers = {Nothing(), Nothing(), Found({{0.1 - 1e-5, 0.2 - 1e-5, 0.3 - 1e-5, 0, 0, 0}})};
  EXPECT_EQ(std::get<0>(Plan(0.01, 1.0f, 10.0f)), 1);
  EXPECT_NEAR(road[1].position.y, 0.2 - 1e-5, 1e-8);
}

}  // namespace
