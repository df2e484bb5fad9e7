#include <climits>

#include "scripted_solver.h"

namespace {

const std::string kNotice = "can't go to mast ver!\n";
constexpr char kStepError[] = "Check Robot Joint Step Error!\n";

// 3000 rpm move joints 1 to 3 by 3000 * 1.04719e-05 * 50 / 363 = 0.0043272314 rad a cycle, joints 4
// to 6 by 0.0051841089.
TEST(JointStepCheck, TellsTheFirstJointThatIsTooFastAndItsOwnLimit) {
  const double limit = 3000 * 1.04719e-05 * 50 / 363;
  const std::string big = "max speed step0.00432723\n";
  const std::string small = "max speed step0.00518411\n";
  const std::tuple<Joints, int, std::string> cases[] = {
      {{limit, -limit, 0, 0, 0, 0.005}, 3000, ""},
      {{std::nextafter(limit, 1.0)}, 3000, "the big diff is0.00432723\n" + big},
      {{0, 0, 0, 0, 0, -0.0052}, 3000, "the small diff is0.0052\n" + small},
      {{0, 0, 0, 0.1, 0, 0}, 3000, "the small diff is0.1\n" + small},
      {{0, 0, 0.1, 0, 0.2, 0}, 3000, "the big diff is0.1\n" + big},
      {{kNan, 0, 0, 0, kNan, 0}, 3000, ""},
      {{}, -1000, "the big diff is0\nmax speed step-0.00144241\n"}};
  for (const auto& [step, rpm, said] : cases) {
    RoadPoint from;
    RoadPoint to = Waypoint(Pos(), step);
    EXPECT_EQ(Captured([&, rpm = rpm] { return Ikfunc::CheckRobotJointStep(from, to, rpm); }),
              BoolOutcome(said.empty(), said, ""));
  }
}

// The gantry's joints 1 to 3 are the coordinates.
class SCurveLine : public ScriptedMove {
 protected:
  SCurveLine() {
    start_ = end_ = Waypoint(Pos(0.1, 0.2, 0.3), {0.1, 0.2, 0.3});
    road_ = {Waypoint(Pos(7, 8, 9))};
  }
  // The outcome of a line along x, into `road_`.
  Outcome<int> Plan(double length, float acc, float jerk, int rpm = 3000) {
    end_.position.x = end_.jointpos[0] = 0.1 + length;
    return Captured([&] {
      return Ikfunc::CountSRunCurvelLineToBuffer(start_, end_, &road_, 1.0f, acc, jerk, rpm);
    });
  }
};

// 2 * 10 * t^3 = 0.01 at t = 0.0794 s: 15 samples of 5 ms, at 10 * t^3 / 6 along the line. The yaw
// goes from 3 to -3 by -6, not by +0.28.
TEST_F(SCurveLine, AppendsItsFirstPhaseAndTurnsTheLongWayToo) {
  start_.orientation = Turn(3, 2);
  end_.orientation = Turn(-3, 2);
  EXPECT_EQ(Plan(0.01, 1.0f, 10.0f), Outcome<int>(1, "", kNotice));
  ASSERT_EQ(road_.size(), 16u);
  EXPECT_EQ(road_[0].position.x, 7.0);
  for (size_t i = 1; i <= 15; ++i) {
    const double t = 5 * static_cast<double>(i) / 1000.0;
    const double x = 10.0 * t * t * t / 6;
    EXPECT_DOUBLE_EQ(road_[i].position.x, x + 0.1);
    const RoadPoint sample = Waypoint(Pos(x + 0.1, 0.2, 0.3), {}, Turn(3 - 6 * x / 0.01, 2));
    ExpectNear(All(road_[i]), All(Solved(sample, {x + 0.1, 0.2, 0.3, 0, 0, 0})), 1e-13);
  }
  // The acceleration selects the case and no more: no limit at all goes the same way.
  EXPECT_EQ(Plan(0.01, INFINITY, 10.0f), Outcome<int>(1, "", kNotice));
  EXPECT_EQ(road_.size(), 31u);
}

TEST_F(SCurveLine, AnswersALineBelowTheShortestProfileWithItsEndPoints) {
  const std::string said = "Smin distance is0.00016\nlength distance is0.0001\n";
  // At the caller's motor speed, not at twice that: 1e-4 rad needs 69.3 rpm.
  EXPECT_EQ(
      Plan(0.0001, 1.0f, 10.0f, 69),
      Outcome<int>(-1, said + "the big diff is0.0001\nmax speed step9.95263e-05\n", kStepError));
  EXPECT_EQ(road_.size(), 1u);
  EXPECT_EQ(Plan(0.0001, 1.0f, 10.0f, 70), Outcome<int>(1, said, ""));
  ASSERT_EQ(road_.size(), 2u);
  EXPECT_EQ(road_[1].position.x, 0.1 + 0.0001);
  // Exactly the shortest profile, 2 * jerk * (0.02 s)^3 in single precision.
  start_ = end_ = Waypoint(Pos());
  end_.position.y = double{2.0f * 10.0f * 0.02f * 0.02f * 0.02f};
  EXPECT_EQ(std::get<2>(Plan(-0.1, 1, 10)), "");
}

// 0.2 over 10 are the 20 ms that are too short. A phase of (0.5 * 0.5 / 1e-21)^(1/3) s is no int of
// milliseconds.
TEST_F(SCurveLine, RefusesLimitsThatMakeNoProfile) {
  using Limits = std::vector<std::pair<float, float>>;
  for (const auto& [acc, jerk] : Limits{{0.2f, 10}, {0, 10}, {1, -10}}) {
    EXPECT_EQ(Plan(0.01, acc, jerk), Outcome<int>(-2, "", "max_acc is too small can't reach!\n"));
  }
  for (const auto& [acc, jerk] :
       Limits{{-1, -10}, {1, 0}, {NAN, 10}, {1, NAN}, {INFINITY, NAN}, {1e-17f, 1e-21f}}) {
    EXPECT_EQ(Plan(0.5, acc, jerk), Outcome<int>(-2, "", "")) << acc;
  }
  EXPECT_EQ(Plan(kNan, 1, 10), Outcome<int>(-2, "", ""));
  // A build-up of 100 ms at a jerk of 1e-7 makes 2e-7 * 100^3 = 0.2 m the longest line.
  EXPECT_EQ(Plan(0.3, 1e-8f, 1e-7f), Outcome<int>(1, "", ""));
  EXPECT_EQ(road_.size(), 1u);
}

// The steps grow: i^3 - (i - 1)^3 of 10 / 6 * 0.005^3 = 2.0833e-7 m. Twice 10 rpm allow 2.885e-5,
// which the 7th step (127 of them) holds and the 8th (169) does not.
TEST_F(SCurveLine, StopsAtAJointStepAboveTwiceTheMotorSpeed) {
  EXPECT_EQ(Plan(0.01, 1.0f, 10.0f, 10),
            Outcome<int>(-1, "the big diff is3.52083e-05\nmax speed step2.88482e-05\n",
                         kNotice + kStepError));
  EXPECT_TRUE(road_.empty());
  EXPECT_EQ(std::get<0>(Plan(0.01, 1.0f, 10.0f, INT_MAX)), 1);
}

TEST_F(SCurveLine, NeedsBothEndPointsInReachButHoldsTheJointsOnTheWay) {
  for (const size_t answered : {size_t{0}, size_t{1}}) {
    FindNothing(answered, 3);
    EXPECT_EQ(Plan(0.01, 1.0f, 10.0f),
              Outcome<int>(-1, "ARM IK is error\n", kUnsolved + "s_point and e_point Ik error!\n"));
    EXPECT_EQ(script.queries.size(), answered + 3);
  }
  // An end that the solver refuses gives way to its own joints, nudged: the line runs from there.
  FindNothing(0, 2);
  EXPECT_EQ(std::get<0>(Plan(0.01, 1.0f, 10.0f)), 1);
  EXPECT_NEAR(road_[1].position.y, 0.2 - 1e-5, 1e-8);
  FindNothing(2, 2);
  EXPECT_EQ(Plan(0.01, 1.0f, 10.0f), Outcome<int>(1, "", kNotice + kUnsolved));
  EXPECT_EQ(road_[16].jointpos[0], 0.1);
  EXPECT_EQ(road_[17].jointpos[0], road_[17].position.x);
}

}  // namespace
