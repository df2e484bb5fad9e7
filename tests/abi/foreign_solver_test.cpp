#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include "captured.h"
#include "kinematics/ikfunc.h"
#include "waypoints.h"

// The library with the solver of foreign_solver.cpp, which the loader finds in place of libik.so.

namespace {

// Its own joints are far from both of the gantry's solutions.
RoadPoint Start() {
  RoadPoint point;
  point.position = Pos(0.1, 0.2, 0.3);
  point.orientation = Ori(1, 0, 0, 0);
  for (double& joint : point.jointpos) joint = 0.5;
  return point;
}

// The nearer of the two.
Numbers Solved() {
  const auto& [p, q, joints, flag] = Start();
  return {p.x, p.y, p.z, q.w, q.x, q.y, q.z, p.x, p.y, p.z, 1, 1, 1, true};
}

TEST(ForeignSolver, SolvesALine) {
  RoadPoint start = Start();
  RoadPoint end = start;
  end.position.x = 0.4;
  ASSERT_TRUE(Ikfunc::ArmJointIk(start, start.jointpos, 1.0));
  EXPECT_EQ(All(start), Solved());
  std::vector<RoadPoint> road;
  ASSERT_TRUE(Ikfunc::CountLineToBuffer(start, end, &road, 50));
  ASSERT_GT(road.size(), 2u * 50 + 200);
  road.pop_back();
  for (const RoadPoint& point : road) {
    EXPECT_EQ(point.jointpos[0], point.position.x);
    EXPECT_EQ(point.jointpos[5], 1.0);
  }
}

TEST(ForeignSolver, FaultyAnswersAreNoSolutions) {
  const char* const unsolved = "Failed to get  ik solution ArmJointIK \n";
  const char* const inadmissible = "Failed to get joint ik solution\n";
  const std::pair<const char*, const char*> faults[] = {
      {"has four joints", inadmissible},
      {"has seven joints", inadmissible},
      {"finds nothing and returns true", inadmissible},
      {"finds joints and returns false", unsolved},
      {"leaves joint 5 free", ""}};  // read at 0, which is a solution
  for (const auto& [fault, message] : faults) {
    setenv("QAL_FOREIGN_FAULT", fault, 1);
    RoadPoint point = Start();
    const bool solves = message[0] == '\0';
    EXPECT_EQ(Captured([&] { return Ikfunc::ArmJointIk(point, point.jointpos, 1.0); }),
              Outcome<bool>(solves, "", message))
        << fault;
    EXPECT_EQ(All(point), solves ? Solved() : All(Start())) << fault;
  }
  unsetenv("QAL_FOREIGN_FAULT");
}

TEST(ForeignSolver, WhatItThrowsPassesAndNothingIsWritten) {
  RoadPoint point = Start();
  RoadPoint other = Start();
  RoadPoint result;
  other.position.x = 0.2;
  std::vector<RoadPoint> road(3, Start());
  const std::function<void()> operations[] = {
      [&] { (void)Ikfunc::ArmFk(point); },
      [&] { (void)Ikfunc::ArmIk(point, point.jointpos); },
      [&] { (void)Ikfunc::ArmJointIk(point, point.jointpos, 1.0); },
      [&] { (void)Ikfunc::ArmJointIk(point, other, 1.0); },
      [&] { (void)Ikfunc::ArmLineMoveIk(point, Pos(0, 0, 0), point.jointpos, 1.0); },
      [&] { (void)Ikfunc::ArmIk(point, 0, 0, 0.01, result); },
      [&] { (void)Ikfunc::ArmCheckAndCountSimilarIk(point); },
      [&] { (void)Ikfunc::CountLineSize(point, other, 10); },
      [&] { (void)Ikfunc::CountSRunCurvelLineToBuffer(point, other, &road, 1, 1, 1, 3000); }};
  for (const auto& operation : operations) {
    setenv("QAL_FOREIGN_FAULT", "throws", 1);
    try {
      operation();
      ADD_FAILURE() << "nothing thrown by operation " << &operation - operations;
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "no\nway");
    }
    setenv("QAL_FOREIGN_FAULT", "throws an int", 1);
    EXPECT_THROW(operation(), int);
    EXPECT_EQ(All(point), All(Start()));
    EXPECT_EQ(All(result), All(RoadPoint()));
    EXPECT_EQ(road.size(), 3u);
  }
  unsetenv("QAL_FOREIGN_FAULT");
}

// With a solver of the later layout: six entries of 32 bytes are eight of 24.
TEST(LateLayout, IsReadAsEightJointsAndNeverSolves) {
  RoadPoint point = Start();
  EXPECT_EQ(Captured([&] { return Ikfunc::ArmJointIk(point, point.jointpos, 1.0); }),
            Outcome<bool>(false, "", "Failed to get joint ik solution\n"));
  EXPECT_EQ(All(point), All(Start()));
}

}  // namespace
