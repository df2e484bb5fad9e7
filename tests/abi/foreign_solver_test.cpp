#include <cstdlib>
#include <stdexcept>

#include "waypoints.h"

// The library with the solver of support/faulty_solver.cpp, the reference arm with a fault, which
// the loader finds in place of libik.so.

namespace {

// Low in front of the arm, the tool pointing down.
const Joints kJoints = {0.1, 0.45, 0.88, 0.1, 0.4, 0.2};

RoadPoint Start() {
  RoadPoint point = Waypoint(Pos(), kJoints);
  EXPECT_TRUE(Ikfunc::ArmFk(point));
  for (double& joint : point.jointpos) joint += 0.1;
  return point;
}

// Solves a pose with a solver of that fault, and expects what comes of it.
void ExpectOutcome(const char* fault, const std::string& message) {
  SCOPED_TRACE(fault);
  const RoadPoint start = Start();
  RoadPoint point = start;
  setenv("QAL_FOREIGN_FAULT", fault, 1);
  EXPECT_EQ(Captured([&] { return Ikfunc::ArmJointIk(point, point.jointpos, 1.0); }),
            BoolOutcome(message.empty(), "", message));
  unsetenv("QAL_FOREIGN_FAULT");
  const std::vector<double> joints(kJoints.begin(), kJoints.end());
  ExpectNear(All(point), All(message.empty() ? Solved(start, joints) : start),
             message.empty() ? 1e-6 : 0.0);
}

TEST(ForeignSolver, SolvesALine) {
  const RoadPoint start = Solved(Start(), {kJoints.begin(), kJoints.end()});
  RoadPoint end = start;
  end.position.z += 0.3;
  std::vector<RoadPoint> road;
  ASSERT_TRUE(Ikfunc::CountLineToBuffer(start, end, &road, 50));
  ASSERT_GT(road.size(), 2u * 50 + 200);
  road.pop_back();  // as given, not solved
  for (const RoadPoint& point : road) {
    RoadPoint reached = point;
    EXPECT_TRUE(Ikfunc::ArmFk(reached));
    ExpectNear(All(reached.position), All(point.position), 1e-6);
  }
}

TEST(ForeignSolver, FaultyAnswersAreNoSolutions) {
  ExpectOutcome("none", "");
  ExpectOutcome("has four joints", kInadmissible);
  ExpectOutcome("has seven joints", kInadmissible);
  ExpectOutcome("late layout", kInadmissible);  // six entries of 32 bytes are eight of 24
  ExpectOutcome("finds nothing and returns true", kInadmissible);
  ExpectOutcome("finds joints and returns false", kUnsolved);
  ExpectOutcome("leaves joint 5 free", "");  // read at 0, which is a solution
}

TEST(ForeignSolver, WhatItThrowsPassesAndNothingIsWritten) {
  const RoadPoint start = Start();
  RoadPoint point = start;
  std::vector<RoadPoint> road;
  setenv("QAL_FOREIGN_FAULT", "throws forward", 1);
  EXPECT_THROW(Ikfunc::ArmFk(point), std::runtime_error);
  setenv("QAL_FOREIGN_FAULT", "throws", 1);
  EXPECT_THROW(Ikfunc::ArmIk(point, point.jointpos), std::runtime_error);
  setenv("QAL_FOREIGN_FAULT", "throws an int", 1);
  EXPECT_THROW(Ikfunc::ArmJointIk(point, point.jointpos, 1.0), int);
  EXPECT_THROW(Ikfunc::CountLineToBuffer(point, point, &road, 0), int);
  EXPECT_EQ(All(point), All(start));
  unsetenv("QAL_FOREIGN_FAULT");
}

}  // namespace
