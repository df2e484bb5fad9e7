#include <climits>

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
  RoadPoint start_ = Waypoint(Pos(0, 0, 0));
  RoadPoint end_ = Waypoint(Pos(0, 0, 0), {9, 9, 9, 9, 9, 9}, Ori(0.99995, 0, 0, 0));
  std::vector<RoadPoint> road_;
};

// 0.0101 at speed 10: ramps of 0.0011 each leave 39.5 steps of 0.0002.
TEST_F(RampedLine, RampsUpCruisesRampsDownAndJumpsToTheEnd) {
  EXPECT_EQ(Plan(Pos(0.0101, 0, 0), 10), kSilentTrue);
  ASSERT_EQ(road_.size(), 61u);
  Pos position;
  for (int i = 0; i < 60; ++i) {
    position.x += std::min({i, 10, 60 - i}) * kUnit;  // added up, not multiplied out
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
  }
}

// Speed 3, ramps of 0.00024 together, four cruise steps: 4 points up, 4 on, 3 down.
TEST_F(RampedLine, StopsAtAPointWithoutSolution) {
  const Pos end(0.0005, 0, 0);
  EXPECT_EQ(Plan(end, 3), kSilentTrue);
  const std::vector<RoadPoint> whole = road_;
  ASSERT_EQ(whole.size(), 12u);
  for (size_t at = 0; at < 11; ++at) {
    FindNothing(at, 3);
    RoadPoint failed = at == 0 ? start_ : whole[at - 1];
    failed.position = whole[at].position;
    const std::string line = at < 8 ? "" : "ik error joint at" + std::to_string(at - 8) + "\n";
    EXPECT_EQ(Plan(end, 3), BoolOutcome(false, line + Printed(failed), kUnsolved));
    ASSERT_EQ(road_.size(), at);
    for (size_t i = 0; i < at; ++i) EXPECT_EQ(All(road_[i]), All(whole[i]));
    // The first fallback goes from the joints before by this point's step: to the same pose.
    EXPECT_EQ(script.asked[at + 1], script.asked[at]);
  }
}

TEST_F(RampedLine, IsTrueAndWritesNothingWhereTheRampsDoNotFit) {
  const std::pair<Pos, int> cases[] = {
      {Pos(0.00003999, 0, 0), 1}, {Pos(0.5, kNan, 0), 10}, {Pos(0, 0, 1), INT_MAX}};
  for (const auto& [end, speed] : cases) {
    EXPECT_EQ(Plan(end, speed), kSilentTrue);
    EXPECT_EQ(road_.size(), 3u);
  }
  EXPECT_EQ(Plan(Pos(0, 0, 2 * kUnit), 1), kSilentTrue);  // just fits
  EXPECT_EQ(road_.size(), 4u);
  const auto apart = Plan(Pos(0, 0, 1.5), 1);
  const std::string pair = Printed(start_) + Printed(end_);
  EXPECT_EQ(apart, BoolOutcome(false, "CountLineToBuffer error the point data is\n" + pair, ""));
  EXPECT_EQ(road_.size(), 3u);
}

TEST_F(RampedLine, StandsStillAtSpeedZeroAndOnlyJumpsBelow) {
  EXPECT_EQ(Plan(Pos(0, 0.01, 0), 0), kSilentTrue);
  ASSERT_EQ(road_.size(), 2u);
  EXPECT_EQ(All(road_[0]), All(Solved(start_, {0, 0, 0, 0, 0, 0})));
  EXPECT_EQ(Plan(Pos(0, 0.01, 0), -3), kSilentTrue);
  ASSERT_EQ(road_.size(), 1u);
  EXPECT_EQ(All(road_[0]), All(end_));
}

TEST_F(RampedLine, BoundsTheMoveFromPointToPoint) {
  for (const double move : {0.518, 0.5181}) {
    MoveJoint4(-move);
    EXPECT_EQ(std::get<0>(Plan(Pos(0.01, 0, 0), 10)), move == 0.518);
  }
}

}  // namespace
