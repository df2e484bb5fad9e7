#include <climits>

#include "scripted_solver.h"

namespace {

const std::string kNoPair = "CountLineSize error the point data is\n";
const Ori kTilted(0.99999, 0, 0, 0.00001);
const RoadPoint kCanary = Waypoint(Pos(7, 7, 7), {7, 7, 7, 7, 7, 7}, Ori(7, 7, 7, 7));

// Most lines are 0.0014 long. Point i of n is multiplied before divided.
const Pos kFrom(1, 0.25, -0.5);
const Pos kTo(1.0006, 0.2512, -0.5004);
Pos PointOf(int i, int n) {
  return Pos((1.0006 - 1) * i / n + 1, (0.2512 - 0.25) * i / n + 0.25,
             (-0.5004 + 0.5) * i / n - 0.5);
}
RoadPoint SolvedAt(const Pos& p) { return Solved(Waypoint(p), {p.x, p.y, p.z, 0, 0, 0}); }

class FixedLine : public ScriptedMove {
 protected:
  FixedLine() {
    start_ = Waypoint(kFrom, {1, 0.25, -0.5});
    end_ = Waypoint(kTo, {0.5, 0.5, 0.5, 0.5, 0.5, 0.5});
    road_.assign(6, kCanary);
  }
  // A speed of 10 is a step of 0.0004.
  auto Count(int speed = 10) {
    return Captured([=] { return Ikfunc::CountLineSize(start_, end_, speed); });
  }
  // The array starts one element on, so that a write before it shows as well as one behind.
  auto Fill(int count) {
    return Captured([=] { return Ikfunc::CountLineToBuffer(start_, end_, count, &road_[1], 10); });
  }
  auto FillPrecisely(double precis) {
    return Captured([=] { return Ikfunc::CountLineToBuffer(start_, end_, precis, &road_[1]); });
  }
  void ExpectArray(std::vector<RoadPoint> written) {
    written.insert(written.begin(), kCanary);
    written.resize(road_.size(), kCanary);
    EXPECT_EQ(All(road_), All(written));
    road_.assign(road_.size(), kCanary);
  }
};

TEST_F(FixedLine, CountsWholeStepsAndTheEndPoint) {
  const std::tuple<Pos, int, int> cases[] = {
      {Pos(0.0003, 0, 0), 10, 1}, {Pos(0.003, 0.0048, 0.0024), 5, 31},
      {Pos(0, 1, 0), INT_MAX, 1}, {Pos(1, 0, 0), 0, -2},
      {Pos(1, 0, 0), -1, -2},     {Pos(0, kNan, 0), 10, -2}};
  start_ = Waypoint(Pos(0, 0, 0));
  for (const auto& [position, speed, count] : cases) {  // the second one is 0.006145 long
    end_ = Waypoint(position, {}, kTilted);
    EXPECT_EQ(Count(speed), Outcome<int>(count, "", ""));
  }
  for (const RoadPoint& far :
       {Waypoint(Pos(), {}, Ori(1, 0, 2e-4, 0)), Waypoint(Pos(0, -1.01, 0))}) {
    end_ = far;
    EXPECT_EQ(Count(0), Outcome<int>(-2, kNoPair + Printed(start_) + Printed(end_), ""));
  }
}

TEST_F(FixedLine, CountSolvesThreeStepsAndTheEnd) {
  EXPECT_EQ(Count(), Outcome<int>(4, "", ""));
  ASSERT_EQ(script.queries.size(), 4u);
  EXPECT_EQ(script.queries[2], GantryAt(PointOf(2, 3)));
  EXPECT_EQ(script.queries[3], GantryAt(kTo));
  FindNothing(1,
              3);  // the second point: queried also a third of the line on from the first's joints
  RoadPoint failed = SolvedAt(kFrom);
  failed.position = PointOf(1, 3);
  EXPECT_EQ(Count(), Outcome<int>(0, Printed(failed), kUnsolved));
  EXPECT_EQ(script.queries[2],
            GantryAt(kFrom + Pos((1.0006 - 1) / 3, (0.2512 - 0.25) / 3, (-0.5004 + 0.5) / 3)));
  FindNothing(3, 2);
  EXPECT_EQ(Count(),
            Outcome<int>(-1, Printed(SolvedAt(PointOf(2, 3))), "the end point is error!\n"));
}

TEST_F(FixedLine, FillCutsOrientationsThatDifferToFourDecimals) {
  end_.orientation = kTilted;
  EXPECT_EQ(Fill(2), kSilentTrue);
  RoadPoint start = SolvedAt(kFrom);
  RoadPoint end = end_;
  start.orientation = end.orientation = Ori(0.9999999747378752, 0, 0, 0);
  ExpectArray({start, end});
  start = start_;
  start.orientation.w = 10000 * 9.999999747378752e-05;
  end_.orientation = Ori(0.9999, 0, 0, 0);
  end.orientation.w = 9999 * 9.999999747378752e-05;
  EXPECT_EQ(Fill(2), BoolOutcome(false, kNoPair + Printed(start) + Printed(end), ""));
  ExpectArray({});
}

// 1.00015 and so on, as whole numbers of the single-precision 1e-6. A hold is tried before.
TEST_F(FixedLine, FillTriesAPointAgainWithItsCoordinatesCut) {
  constexpr double kMicro = 9.999999974752427e-07;
  RoadPoint cut = SolvedAt(Pos(1000150 * kMicro, 250300 * kMicro, -500099 * kMicro));
  FindNothing(1, 2);
  EXPECT_EQ(Fill(4), BoolOutcome(true, "", kUnsolved));
  ExpectArray({SolvedAt(kFrom), cut, SolvedAt(PointOf(2, 4)), end_});
  EXPECT_EQ(script.queries.size(), 6u);  // the point that the end replaces is solved all the same
  FindNothing(1, 4);
  std::copy_n(start_.jointpos, 6, cut.jointpos);
  EXPECT_EQ(Fill(4), BoolOutcome(false, "CountLineToBuffer ik error at1\n" + Printed(cut),
                                 kUnsolved + kUnsolved));
  ExpectArray({SolvedAt(kFrom)});
  for (const int none : {0, INT_MIN}) EXPECT_EQ(Fill(none), kSilentFalse);
}

// 0.0002 * 2 a step: 3.5 steps.
TEST_F(FixedLine, PreciseFillReturnsItsCountAndGoesOnPastFailures) {
  std::copy_n(std::begin({1.0006, 0.2512, -0.5004, 0.03, 0.0, 0.0}), 6, end_.jointpos);
  std::vector<RoadPoint> points;
  for (int i = 0; i < 3; ++i) points.push_back(SolvedAt(PointOf(i, 3)));
  points.push_back(SolvedAt(kTo));
  EXPECT_EQ(FillPrecisely(2), Outcome<int>(4, "", ""));
  ExpectArray(points);
  FindNothing(2, 4);  // the joints before are kept
  EXPECT_EQ(FillPrecisely(2), Outcome<int>(4, "", kUnsolved + kUnsolved));
  std::copy_n(points[1].jointpos, 6, points[2].jointpos);
  points[3] = end_;
  ExpectArray(points);

  // The last one leaves no room for the end point.
  const Pos dst = end_.position - start_.position;
  const double most = Ikfunc::NORM(dst.x, dst.y, dst.z, 0) / 0.0002 / 2147483647.5;
  for (const double none : {0.0, -1.0, kNan, 1e-9, 1e-320, most}) {
    EXPECT_EQ(FillPrecisely(none), Outcome<int>(-2, "", ""));
  }
  end_.orientation = kTilted;
  EXPECT_EQ(FillPrecisely(2), Outcome<int>(-2, "", ""));
  ExpectArray({});
}

// Joint 4 of the first point moves by `part` of the bound: 100 or 20 rad a unit of step, or fixed.
TEST_F(FixedLine, BoundsTheMoveFromPointToPoint) {
  for (const double part : {0.9999, 1.0001}) {
    MoveJoint4(0.04 * part);
    EXPECT_EQ(std::get<0>(Count()), part < 1 ? 4 : 0);
    MoveJoint4(0.008 * part);
    EXPECT_EQ(std::get<0>(Fill(2)), part < 1);
    MoveJoint4(0.043633200000000004 * part);
    (void)FillPrecisely(2);
    EXPECT_EQ(road_[1].ik_flag, part < 1);
  }
}

}  // namespace
