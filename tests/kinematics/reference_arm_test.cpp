#include <random>

#include "kinematics/ikfunc.h"
#include "waypoints.h"

namespace {

RoadPoint At(const Joints& joints) {
  RoadPoint point = Waypoint(Pos(), joints);
  EXPECT_TRUE(Ikfunc::ArmFk(point));
  return point;
}

// Expects that the joints reach each pose, and move no further than `step_rad` from the point
// before. Orientations are single precision.
void ExpectConsistent(const std::vector<RoadPoint>& points, float step_rad) {
  RoadPoint before = points.at(0);
  for (const RoadPoint& point : points) {
    RoadPoint pose = point;
    ASSERT_TRUE(Ikfunc::ArmFk(pose));
    ASSERT_TRUE(Ikfunc::PositionCompare(pose, point, 1e-6f, 1e-6f));
    ASSERT_TRUE(Ikfunc::JointCompare(point, before, step_rad));
    ASSERT_TRUE(point.ik_flag);
    before = point;
  }
}

// 0.3001 m at 1 mm a cycle: ramps of 25.5 mm each leave 249 steps. The joints move by 0.002 rad per
// mm at the most.
TEST(ReferenceArm, FollowsStraightLines) {
  const RoadPoint start = At({-0.3, 0.4, -0.1, 0.2, 0.8, 0.1});
  RoadPoint end = start;
  end.position = start.position + Pos(0.1, 0.2002, -0.2);
  ASSERT_TRUE(Ikfunc::ArmIk(end, end.jointpos));

  std::vector<RoadPoint> points;
  ASSERT_TRUE(Ikfunc::CountLineToBuffer(start, end, &points, 50));
  EXPECT_EQ(points.size(), 2u * 50 + 249 + 2);
  ExpectConsistent(points, 0.002f);

  ASSERT_EQ(Ikfunc::CountLineSize(start, end, 25), 301);
  points.resize(301);
  ASSERT_TRUE(Ikfunc::CountLineToBuffer(start, end, 301, points.data(), 25));
  ExpectConsistent(points, 0.004f);  // the last interval is two steps
  EXPECT_EQ(Ikfunc::CountLineToBuffer(start, end, 5.0, points.data()), 301);
  ExpectConsistent(points, 0.002f);

  for (const int frame : {0, 1}) {
    for (int mode = 0; mode < 6; ++mode) {
      ASSERT_TRUE(Ikfunc::ArmIk(end, frame, mode, 0.001, points[1]));
      ExpectConsistent({end, points[1]}, 0.01f);
    }
  }
}

// Back from the pose to the joints, from a reference a little beside them.
TEST(ReferenceArm, FindsTheJointsOfAPoseAgain) {
  std::mt19937 engine(20261125);
  std::uniform_real_distribution<double> range(-2.9, 2.9);
  for (int i = 0; i < 2000; ++i) {
    Joints joints;
    for (double& joint : joints) joint = range(engine);
    if (std::fabs(std::sin(joints[4])) < 0.1) continue;  // the wrist's axes line up
    RoadPoint point = At(joints);
    for (double& joint : joints) joint += 0.002;
    ASSERT_TRUE(Ikfunc::ArmIk(point, joints.data())) << i;
    ExpectConsistent({point, point}, 0.0f);
  }
}

}  // namespace
