#include <climits>

#include "scripted_solver.h"

namespace {

constexpr double kUnit = 2e-5;

class RampedLine : public ScriptedMove {
 protected:
  RampedLine() { start_ = Waypoint(Pos()); }
  auto Plan(const Pos& end, int speed) {
    end_ = Waypoint(end, {9, 9, 9, 9, 9, 9}, Ori(0.99995, 0, 0, 0));
    road_ = {start_, start_, start_};
    return Captured([=] { return Ikfunc::CountLineToBuffer(start_, end_, &road_, speed); });
  }
};

// Speed 3, ramps of 0.00024 together, four cruise steps: 4 points up, 4 on, 3 down.
TEST_F(RampedLine, StopsAtAPointWithoutSolution) {
  const Pos end(0.0005, 0, 0);
  EXPECT_EQ(Plan(end, 3), kSilentTrue);
  std::vector<RoadPoint> whole = road_;
  ASSERT_EQ(whole.size(), 12u);
  for (size_t at = 11; at-- > 0;) {
    FindNothing(at, 3);
    RoadPoint failed = at == 0 ? start_ : whole[at - 1];
    failed.position = whole[at].position;
    const std::string line = at < 8 ? "" : "ik error joint at" + std::to_string(at - 8) + "\n";
    EXPECT_EQ(Plan(end, 3), BoolOutcome(false, line + Printed(failed), kUnsolved));
    whole.resize(at);
    EXPECT_EQ(All(road_), All(whole));
    // The first fallback goes from the joints before by this point's step: to the same pose.
    EXPECT_EQ(script.queries[at + 1], script.queries[at]);
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
  EXPECT_EQ(Plan(Pos(0, 0.01, 0), 0), kSilentTrue);  // stands still
  EXPECT_EQ(All(road_), All({Solved(start_, {0, 0, 0, 0, 0, 0}), end_}));
  const auto [result, line, error] = Plan(Pos(0, 0, 1.5), 1);
  EXPECT_EQ(line, "CountLineToBuffer error the point data is\n" + Printed(start_) + Printed(end_));
  EXPECT_FALSE(result || !error.empty());
  EXPECT_EQ(road_.size(), 3u);
}

TEST_F(RampedLine, BoundsTheMoveFromPointToPoint) {
  for (const double move : {0.518, 0.5181}) {
    MoveJoint4(-move);
    EXPECT_EQ(std::get<0>(Plan(Pos(0.01, 0, 0), 10)), move == 0.518);
  }
}

}  // namespace
