#include <climits>

#include "captured.h"
#include "kinematics/ikfunc.h"
#include "waypoints.h"

namespace {

constexpr double kUnit = 2e-5;

class RampedLine : public ScriptedSolver {
 protected:
  auto Plan(const Pos& end, int speed) {
    end_.position = end;
    road_ = {start_, start_, start_};
    return Captured([=] { return Ikfunc::CountLineToBuffer(start_, end_, &road_, speed); });
  }
  void ExpectUntouched() {
    ASSERT_EQ(road_.size(), 3u);
    EXPECT_EQ(All(road_[2]), All(start_));
  }
  RoadPoint start_ = Waypoint(Pos(0, 0, 0));
  RoadPoint end_ = Waypoint(Pos(0, 0, 0), {9, 9, 9, 9, 9, 9}, Ori(0.99995, 0, 0, 0));
  std::vector<RoadPoint> road_;
};

// 0.0101 at speed 10: ramps of 0.0011 each leave 39.5 steps of 0.0002.
TEST_F(RampedLine, RampsUpCruisesRampsDownAndJumpsToTheEnd) {
  EXPECT_EQ(Plan(Pos(0.0101, 0, 0), 10), kSilentTrue);
  std::vector<int> units = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
  units.insert(units.end(), 39, 10);
  units.insert(units.end(), {10, 9, 8, 7, 6, 5, 4, 3, 2, 1});
  ASSERT_EQ(road_.size(), 61u);
  Pos position;
  for (size_t i = 0; i < 60; ++i) {
    position.x += units[i] * kUnit;  // added up, not multiplied out
    EXPECT_EQ(All(road_[i]), All(Solved(Waypoint(position), {position.x, 0, 0, 0, 0, 0}))) << i;
  }
  EXPECT_EQ(All(road_.back()), All(end_));
  EXPECT_EQ(script.asked.size(), 60u);  // the end point is not solved
}

TEST_F(RampedLine, StepsAlongTheLine) {
  for (const Pos& d : {Pos(0.02, -0.03, 0.06), Pos(-0.02, 0.03, 0.06), Pos(0, 0.03, -0.04),
                       Pos(0, -0.03, -0.04), Pos(0, 0, 0.01), Pos(0, 0, -0.01)}) {
    EXPECT_EQ(Plan(d, 2), kSilentTrue);
    const double scale = 3 * kUnit / std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
    ExpectNear(All(road_[2].position), {d.x * scale, d.y * scale, d.z * scale}, 1e-19);
    EXPECT_TRUE(d.x != 0 || road_[2].position.x == 0);  // exactly
    EXPECT_TRUE(d.y != 0 || std::fabs(road_[1].position.z) == kUnit);
  }
}

// Speed 3, ramps of 0.00024 together, four cruise steps: 4 points up, 4 on, 3 down.
TEST_F(RampedLine, StopsAtAPointWithoutSolution) {
  const Pos end(0.0005, 0, 0);
  EXPECT_EQ(Plan(end, 3), kSilentTrue);
  const std::vector<RoadPoint> whole = road_;
  ASSERT_EQ(whole.size(), 12u);
  const char* lines[] = {"", "", "", "", "", "", "", "", "0\n", "1\n", "2\n"};
  for (size_t at = 0; at < 11; ++at) {
    script.asked.clear();
    script.inverse = [at](const SolverPose& target) {
      return script.asked.size() > at ? Nothing() : GantryInverse(target);
    };
    RoadPoint failed = at == 0 ? start_ : whole[at - 1];
    failed.position = whole[at].position;
    EXPECT_EQ(
        Plan(end, 3),
        BoolOutcome(false, (at < 8 ? "" : "ik error joint at") + (lines[at] + Printed(failed)),
                    "Failed to get  ik solution ArmJointIK \n"));
    ASSERT_EQ(road_.size(), at);
    for (size_t i = 0; i < at; ++i) EXPECT_EQ(All(road_[i]), All(whole[i]));
    // The first fallback goes from the joints before by this point's step: to the same pose.
    EXPECT_EQ(script.asked[at + 1], script.asked[at]);
  }
}

TEST_F(RampedLine, IsTrueAndWritesNothingWhereTheRampsDoNotFit) {
  const std::pair<Pos, int> cases[] = {{Pos(0.002, 0, 0), 10},
                                       {Pos(0.00003999, 0, 0), 1},
                                       {Pos(0.5, kNan, 0), 10},
                                       {Pos(0, 0, 1), INT_MAX},
                                       {Pos(0, 0, 1), INT_MIN}};
  for (const auto& [end, speed] : cases) {
    EXPECT_EQ(Plan(end, speed), kSilentTrue);
    ExpectUntouched();
  }
  EXPECT_EQ(Plan(Pos(0, 0, 2 * kUnit), 1), kSilentTrue);  // just fits
  EXPECT_EQ(road_.size(), 4u);
  const auto apart = Plan(Pos(0, 0, 1.5), 1);
  EXPECT_EQ(apart, BoolOutcome(false,
                               "CountLineToBuffer error the point data is\n" + Printed(start_) +
                                   Printed(end_),
                               ""));
  ExpectUntouched();
}

TEST_F(RampedLine, StandsStillAtSpeedZeroAndOnlyJumpsBelow) {
  for (const int speed : {0, -3}) {
    EXPECT_EQ(Plan(Pos(0, 0.01, 0), speed), kSilentTrue);
    ASSERT_EQ(road_.size(), speed == 0 ? 2u : 1u);
    EXPECT_EQ(All(road_.back()), All(end_));
    EXPECT_TRUE(speed < 0 || All(road_[0]) == All(Solved(start_, {0, 0, 0, 0, 0, 0})));
  }
}

TEST_F(RampedLine, BoundsTheMoveFromPointToPoint) {
  for (const double move : {0.518, 0.5181}) {
    script.inverse = [move](const SolverPose& target) {
      return Found({{target[0], target[1], target[2], -move, 0, 0}});
    };
    EXPECT_EQ(std::get<0>(Plan(Pos(0.01, 0, 0), 10)), move == 0.518);
  }
}

}  // namespace
