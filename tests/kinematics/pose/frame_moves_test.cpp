#include "waypoints.h"

namespace {

constexpr double kRounding = 1e-15;
const Ori kSome(0.5, -0.1, 0.3, 0.7);  // not of unit length

// q d q*, which scales by |q|^2 = 0.84 too.
TEST(FrameMoves, TakeToolDisplacementsToTheBaseFrame) {
  const Ori q = Product(Product(kSome, Ori(0, 1, 2, 3)), Ori(0.5, 0.1, -0.3, -0.7));
  ExpectNear(All(Ikfunc::EndMoveXYZ(kSome, Pos(1, 2, 3))), {q.x, q.y, q.z}, kRounding);
}

// The increment multiplies on the right; the first component that isn't zero takes it all.
TEST(FrameMoves, TurnAboutOneToolAxis) {
  const Ori nan(kNan, kNan, kNan, kNan);
  const std::pair<Roz, Ori> cases[] = {{Roz(0.2, 0.5, -0.1), Turn(0.2, 0)},
                                       {Roz(0, 0.3, 0.4), Turn(0.3, 1)},
                                       {Roz(0, 0, -0.1), Turn(-0.1, 2)},
                                       {Roz(0, -0.0, 0), Ori(1, 0, 0, 0)},
                                       {Roz(kNan, 1, 0), nan},
                                       {Roz(0, kNan, 1), nan}};
  for (const auto& [turn, increment] : cases) {
    ExpectNear(All(Ikfunc::EndRotXYZ(kSome, turn)), All(Product(kSome, increment)), kRounding);
  }
}

TEST(FrameMoves, SubtractAndAddPosesByComponent) {
  RoadPoint a = From({4, 2, 3, 1, 2, 3, 4, 1, 2, 3, 4, 5, 6, 1});
  RoadPoint b = From({1, 0.5, -2, 0.5, -1, 8, 0.25, 6, 5, 4, 3, 2, 1, 1});
  EXPECT_EQ(All(Ikfunc::PointDis(a, b)), (Numbers{3, 1.5, 5, 0.5, 3, -5, 3.75}));
  EXPECT_EQ(All(Ikfunc::PointAdd(a, b)), (Numbers{5, 2.5, 1, 1.5, 1, 11, 4.25}));
}

// In the tool frame, a quarter turn about z off the base's, x is the base's y and y is its -x.
TEST(FrameMoves, JogOneStepAlongOrAboutOneAxis) {
  const Pos tool[] = {Pos(0, 0.01, 0), Pos(-0.01, 0, 0), Pos(0, 0, 0.01)};
  const Pos base[] = {Pos(0.01, 0, 0), Pos(0, 0.01, 0), Pos(0, 0, 0.01)};
  const RoadPoint start = Waypoint(Pos(0.1, 0.2, 0.3), {1, 2, 3, 4, 5, 6}, Turn(M_PI / 2, 2));
  for (const int frame : {1, 0, -1}) {
    for (const int mode : {0, 1, 2, 3, 4, 5, 6, -1}) {
      RoadPoint expected = start;
      if (mode >= 0 && mode < 3) {
        expected.position = start.position + (frame == 1 ? tool : base)[mode];
      } else if (mode >= 3 && mode < 6 && frame == 1) {
        expected.orientation = Product(start.orientation, Turn(0.01, mode - 3));
      }
      ExpectNear(All(Ikfunc::EndMove(start, frame, mode, 0.01)), All(expected), 1e-16);
      EXPECT_EQ(All(Ikfunc::EndMove(start, frame, mode, 0.0)), All(start)) << frame << mode;
    }
  }
}

}  // namespace
