#include "scripted_solver.h"

namespace {

using Queries = std::vector<SolverPose>;
using Solutions = std::vector<std::vector<double>>;

const std::string kNoQuaternion = "Error while converting to quaternion!\n";

// The five operations that query the solver and choose. All but the first have a step bound.
enum Operation { kNearest, kHold, kMove, kLine, kJog };
const std::vector<Operation> kAll = {kNearest, kHold, kMove, kLine, kJog};
// What each says when no solution is admissible.
const std::string kRefusals[] = {"", kInadmissible, kInadmissible, kInadmissible,
                                 "Failed to get  ik solution\n"};

bool Solve(Operation operation, RoadPoint& point, Joints reference, double bound) {
  if (operation == kNearest) return Ikfunc::ArmIk(point, reference.data());
  if (operation == kHold) return Ikfunc::ArmJointIk(point, reference.data(), bound);
  if (operation == kLine) {
    return Ikfunc::ArmLineMoveIk(point, Pos(10, 20, 40), reference.data(), bound);
  }
  // A base-frame rotation leaves the pose as it is. A unit of step lets a joint move by 1000 rad.
  RoadPoint start = Waypoint(operation == kJog ? point.position : Pos(1, 1, 1), reference);
  const Numbers before = All(start);
  const bool solved = operation == kJog ? Ikfunc::ArmIk(start, 0, 3, -bound / 1000, point)
                                        : Ikfunc::ArmJointIk(start, point, bound);
  EXPECT_EQ(All(start), before);
  return solved;
}

constexpr size_t kNone = 99;

class Inverse : public ScriptedSolver {
 protected:
  // Expects each operation to take solution `chosen`, or to refuse and leave the point.
  void ExpectChoice(const Joints& reference, const Solutions& solutions, size_t chosen,
                    double bound = 7.0, const std::vector<Operation>& operations = kAll) {
    for (const Operation operation : operations) {
      SCOPED_TRACE(testing::PrintToString(solutions) + testing::PrintToString(operation));
      RoadPoint point = point_;
      script.queries.clear();
      script.inverse = [&](auto&) { return Answer{true, solutions}; };
      EXPECT_EQ(Captured([&] { return Solve(operation, point, reference, bound); }),
                BoolOutcome(chosen != kNone, "", chosen == kNone ? kRefusals[operation] : ""));
      ExpectNear(All(point), All(chosen == kNone ? point_ : Solved(point_, solutions[chosen])), 0);
      EXPECT_EQ(script.queries, Queries{kTarget});
    }
  }

  // The solver finds nothing so many times, then `solution`.
  static void FindNothing(size_t times, const std::vector<double>& solution = kSolution) {
    ScriptedSolver::FindNothing(0, times);
    script.inverse = [=](auto&) { return Answer{true, {solution}}; };
  }

  // Expects these queries when the solver finds nothing but for the last one, or not even then
  // (which gives `refusal`), and what is written. `notices` come in either case.
  void ExpectQueries(Operation operation, const Queries& queries, const std::string& refusal,
                     double tolerance = 0.0, const std::string& notices = "") {
    for (const bool found : {true, false}) {
      RoadPoint point = point_;
      FindNothing(queries.size() - found);
      EXPECT_EQ(Captured([&] { return Solve(operation, point, reference_, 0.10002); }),
                BoolOutcome(found, "", found ? notices : notices + refusal));
      ASSERT_EQ(script.queries.size(), queries.size());
      for (size_t i = 0; i < queries.size(); ++i) {
        ExpectNear(script.queries[i], queries[i], tolerance);
      }
      const RoadPoint last = Waypoint(Pos(queries[1][0], queries[1][1], queries[1][2]));
      RoadPoint expected = found ? Solved(operation == kJog ? last : point_, kSolution) : point_;
      if (operation == kNearest && !found) expected = last;
      EXPECT_EQ(All(point), All(expected));
    }
  }

  static SolverPose UpsideDown(const Joints& q) {
    return {q[0], q[1], q[2], 1, 0, 0, 0, -1, 0, 0, 0, -1};
  }

  inline static const std::vector<double> kSolution = {0.4, 0.1, -0.4, 0.2, 0.2, 0.2};
  inline static const SolverPose kTarget = GantryForward({2, 3, 4});
  RoadPoint point_ = Waypoint(Pos(2, 3, 4), {0.3, 0.3, 0.3, 0, 0, 0});
  // Above zero, at it, below it; nudged, 1e-5 nearer to it or past it.
  Joints reference_ = {0.5, 0, -0.5, 0.1, 0.1, 0.1};
  const double up_ = 0.5 - 1e-5, zero_ = 1e-5, down_ = -0.5 + 1e-5;
};

TEST_F(Inverse, ChoosesTheNearestAdmissibleSolution) {
  constexpr double kEdge = 2.967059678;
  const double beyond = std::nextafter(kEdge, 3.0);
  // The nearest wherever it stands, by sum; the earlier in a tie; not wrapped.
  ExpectChoice({}, {{.3, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, -.1}, {0, 0, .2, 0, 0, 0}}, 1);
  ExpectChoice({}, {{.1, 0, 0, 0, 0, 0}, {0, 0, 0, -.1, 0, 0}}, 0);
  ExpectChoice({2.9}, {{-2.9, 0, 0, 0, 0, 0}, {.5, 0, 0, 0, 0, 0}}, 1);
  // A distance of 0 also means none yet.
  ExpectChoice({}, {{0, 0, 0, 0, 0, 0}, {1, 0, 0, 0, 0, 0}, {2, 0, 0, 0, 0, 0}}, 1);
  // The range has both its ends. Solutions of five or seven joints are none.
  ExpectChoice({}, {{kEdge, -kEdge, kEdge, -kEdge, kEdge, -kEdge}}, 0);
  ExpectChoice({0, 0, 0, 0, 0, 2.9}, {{0, 0, 0, 0, 0, beyond}, {0, 0, 0, 0, 0, 1}}, 1);
  ExpectChoice({}, {{0, 0, -beyond, 0, 0, 0}, {0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0}}, kNone);
  // Nothing is nearer than NaN, nor NaN than a number.
  ExpectChoice({}, {{kNan, 0, 0, 0, 0, 0}, {1, 0, 0, 0, 0, 0}}, 0);
  ExpectChoice({}, {{1, 0, 0, 0, 0, 0}, {kNan, 0, 0, 0, 0, 0}}, 0);
}

// A jog's bound has no sign.
TEST_F(Inverse, BoundsEachJointsMove) {
  const Solutions by_a_quarter = {{0.5, 0, -0.75, 0.1, 0.1, 0.1}};
  for (const Operation operation : {kHold, kMove, kLine, kJog}) {
    for (const double bound : {0.25, 0.2499, kNan, -0.25}) {
      const bool within = bound != 0.2499 && (bound != -0.25 || operation == kJog);
      ExpectChoice(reference_, by_a_quarter, within ? 0 : kNone, bound, {operation});
    }
    ExpectChoice(reference_, {{0.5, 0, -0.5, 0.1, 0.1, 0.1}}, 0, 0.0, {operation});
  }
}

// The gantry's coordinates are its first three joints: a query shows what it was made of.
TEST_F(Inverse, FallsBackToTheNudgedReference) {
  const Queries queries = {kTarget, GantryForward({up_, zero_, down_})};
  ExpectQueries(kHold, queries, kUnsolved);
  ExpectQueries(kJog, queries, "2 Failed to get  ik solution\n");
  // The nearest moves the target as the nudge moves the reference: the quaternion's difference
  // makes up for a reference that is upside down.
  script.forward = UpsideDown;
  ExpectQueries(kNearest, {kTarget, GantryForward({up_ + 1.5, zero_ + 3, down_ + 4.5})}, "");
}

// From the point's own joints, not the reference, and with their orientation; then nudged.
TEST_F(Inverse, LineGoesOneStepOn) {
  const double nudged = 0.3 - 1e-5;
  script.forward = UpsideDown;
  ExpectQueries(kLine,
                {kTarget, UpsideDown({10.3, 20.3, 40.3}),
                 UpsideDown({10 + nudged, 20 + nudged, 40 + nudged})},
                kUnsolved);
  FailForward();
  ExpectQueries(kLine, {kTarget, GantryForward({12, 23, 44}), GantryForward({22, 43, 84})},
                kUnsolved, 0.0, kNoQuaternion + kNoQuaternion);
}

// By (1, 2, 3) from the stored position; from a roll of pi at the joints to pi/2, so by -pi/2 from
// the nudged joints' roll of 0.
TEST_F(Inverse, MoveIsCarriedOverToTheNudgedJoints) {
  point_.orientation = Ori(std::sqrt(0.5), std::sqrt(0.5), 0, 0);
  script.forward = [this](const Joints& q) {
    return q == reference_ ? UpsideDown(q) : GantryForward(q);
  };
  ExpectQueries(kMove,
                {{2, 3, 4, 1, 0, 0, 0, 0, -1, 0, 1, 0},
                 {up_ + 1, zero_ + 2, down_ + 3, 1, 0, 0, 0, 0, 1, 0, -1, 0}},
                kUnsolved, 1e-15);
}

// Joints 4 to 6 move 0.1 from the reference, 0.10001 from where the nudge put it.
TEST_F(Inverse, OnlyAMoveIsBoundedFromTheNudgedJoints) {
  for (const Operation operation : {kHold, kMove, kLine, kJog}) {
    FindNothing(1);
    EXPECT_EQ(Solve(operation, point_, reference_, 0.1 + 1e-6), operation != kMove);
  }
}

TEST_F(Inverse, JogMayWriteItsResultOverTheCurrentWaypoint) {
  FindNothing(1);
  RoadPoint point = Waypoint(Pos(2, 3, 4), reference_);
  EXPECT_TRUE(Ikfunc::ArmIk(point, 0, 1, -0.002, point));
  EXPECT_EQ(script.queries[0], GantryForward({2, 3 - 0.002, 4}));
  EXPECT_EQ(All(point), All(Solved(Waypoint(Pos(up_, zero_ - 0.002, down_)), kSolution)));
}

// Within 1e-5 on each axis and 0.0001 in each quaternion component.
TEST_F(Inverse, NearestNeedsNoSolverAtTheReferencesOwnPose) {
  for (const auto& [y, qx] : {std::pair(9e-6, 9e-5), {1.1e-5, 0.0}, {0.0, 1.1e-4}}) {
    RoadPoint point = Waypoint(Pos(0.5, y, -0.5), {}, Ori(1, qx, 0, 0));
    script.queries.clear();
    EXPECT_TRUE(Solve(kNearest, point, reference_, 0.0));
    EXPECT_EQ(script.queries.empty(), y == 9e-6);
    EXPECT_EQ(point.ik_flag, y != 9e-6);
  }
}

// One query of its own, two of the hold, which moves a joint by 0.043633200000000004 at most.
TEST_F(Inverse, ReachabilityLeavesASolvableWaypointAndHoldsAnother) {
  const RoadPoint start = Waypoint(Pos(2, 3, 4), reference_);
  const std::string line = "ARM IK is error\n";
  const std::tuple<size_t, double, BoolOutcome> cases[] = {
      {0, 1.0, kSilentTrue},
      {2, 0.043633200000000004, kSilentTrue},
      {2, 0.0436333, BoolOutcome(false, line, kInadmissible)},
      {3, 0.0, BoolOutcome(false, line, kUnsolved)}};
  for (const auto& [nothing, move, outcome] : cases) {
    const std::vector<double> joints = {0.5, move, -0.5, 0.1, 0.1, 0.1};
    const bool held = nothing == 2 && outcome == kSilentTrue;
    RoadPoint point = start;
    FindNothing(nothing, joints);
    EXPECT_EQ(Captured([&] { return Ikfunc::ArmCheckAndCountSimilarIk(point); }), outcome);
    EXPECT_EQ(All(point), All(held ? Solved(Waypoint(Pos(0.5, move, -0.5)), joints) : start));
    point = start;
    FindNothing(nothing, joints);
    EXPECT_EQ(Ikfunc::ArmIk(point), nothing == 0);  // only queries
    EXPECT_EQ(All(point), All(start));
  }
}

TEST_F(Inverse, PositionsAgreeWithJointsToTwoMillimetresAnAxis) {
  for (const double off : {0.002, -0.0020001, kNan}) {
    for (const Joints& q : {Joints{off}, Joints{0, off}, Joints{0, 0, off}}) {
      EXPECT_EQ(Ikfunc::ChekcArmPointok(Waypoint(Pos(), q)), off != -0.0020001);
    }
  }
  FailForward();
  EXPECT_EQ(Captured([] { return Ikfunc::ChekcArmPointok(RoadPoint()); }),
            BoolOutcome(true, "", kNoQuaternion));
}

}  // namespace
