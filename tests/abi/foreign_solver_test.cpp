#include <cstdlib>
#include <stdexcept>

#include "waypoints.h"

// The library with the solver of foreign_solver.cpp, which the loader finds in place of libik.so.

namespace {

// Its own joints are far from both of the gantry's solutions; the nearer one is of ones.
const RoadPoint kStart = Waypoint(Pos(0.1, 0.2, 0.3), {0.5, 0.5, 0.5, 0.5, 0.5, 0.5});
const RoadPoint kSolved = Solved(kStart, {0.1, 0.2, 0.3, 1, 1, 1});

// Solves kStart with a solver of that fault, and expects what comes of it.
void ExpectOutcome(const char* fault, const std::string& message) {
  setenv("QAL_FOREIGN_FAULT", fault, 1);
  RoadPoint point = kStart;
  EXPECT_EQ(Captured([&] { return Ikfunc::ArmJointIk(point, point.jointpos, 1.0); }),
            BoolOutcome(message.empty(), "", message));
  EXPECT_EQ(All(point), All(message.empty() ? kSolved : kStart)) << fault;
  unsetenv("QAL_FOREIGN_FAULT");
}

TEST(ForeignSolver, SolvesALine) {
  RoadPoint end = kStart;
  end.position.x = 0.4;
  std::vector<RoadPoint> road;
  ASSERT_TRUE(Ikfunc::CountLineToBuffer(kSolved, end, &road, 50));
  ASSERT_GT(road.size(), 2u * 50 + 200);
  road.pop_back();
  for (const RoadPoint& point : road) {
    EXPECT_EQ(All(point), All(Solved(point, {point.position.x, 0.2, 0.3, 1, 1, 1})));
  }
}

TEST(ForeignSolver, FaultyAnswersAreNoSolutions) {
  ExpectOutcome("has four joints", kInadmissible);
  ExpectOutcome("has seven joints", kInadmissible);
  ExpectOutcome("finds nothing and returns true", kInadmissible);
  ExpectOutcome("finds joints and returns false", kUnsolved);
  ExpectOutcome("leaves joint 5 free", "");  // read at 0, which is a solution
}

TEST(ForeignSolver, WhatItThrowsPassesAndNothingIsWritten) {
  RoadPoint point = kStart;
  std::vector<RoadPoint> road;
  setenv("QAL_FOREIGN_FAULT", "throws", 1);
  EXPECT_THROW(Ikfunc::ArmFk(point), std::runtime_error);
  EXPECT_THROW(Ikfunc::ArmIk(point, point.jointpos), std::runtime_error);
  setenv("QAL_FOREIGN_FAULT", "throws an int", 1);
  EXPECT_THROW(Ikfunc::ArmJointIk(point, point.jointpos, 1.0), int);
  EXPECT_THROW(Ikfunc::CountLineToBuffer(point, point, &road, 0), int);
  EXPECT_EQ(All(point), All(kStart));
  unsetenv("QAL_FOREIGN_FAULT");
}

// With a solver of the later layout: six entries of 32 bytes are eight of 24.
TEST(LateLayout, IsReadAsEightJointsAndNeverSolves) { ExpectOutcome("", kInadmissible); }

}  // namespace
