#include "waypoints.h"

namespace {

// Expects that the joints reach each pose, and move no further than `step_rad` from the point
// before. Orientations are single precision.
void ExpectConsistent(const std::vector<RoadPoint>& points, float step_rad) {
  RoadPoint before = points.at(0);
  for (const RoadPoint& point : points) {
    RoadPoint pose = point;
    ASSERT_TRUE(Ikfunc::ArmFk(pose));
    ASSERT_TRUE(Ikfunc::PositionCompare(pose, point, 1e-6f, 1e-6f));
    ASSERT_TRUE(Ikfunc::JointCompare(point, before, step_rad));
    before = point;
  }
}

// 0.3001 m at 1 mm a cycle: ramps of 25.5 mm each leave 249 steps. The joints move by 0.002 rad per
// mm at the most.
TEST(ReferenceArm, FollowsStraightLines) {
  RoadPoint start = Waypoint(Pos(), {-0.3, 0.4, -0.1, 0.2, 0.8, 0.1});
  ASSERT_TRUE(Ikfunc::ArmFk(start));
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
  for (const int mode : {0, 1, 2, 3, 4, 5}) {
    ASSERT_TRUE(Ikfunc::ArmIk(end, 1, mode, 0.001, points[1]));
    ExpectConsistent({end, points[1]}, 0.01f);
  }
}

}  // namespace
