#include "scripted_solver.h"

namespace {

using Rotation = std::array<double, 9>;

class Forward : public ScriptedSolver {
 protected:
  // What comes of forward kinematics when the solver answers `rotation`.
  static BoolOutcome Forwarded(const Rotation& rotation, RoadPoint& point) {
    script.forward = [rotation](const Joints& q) {
      SolverPose pose = GantryForward(q);
      std::copy(rotation.begin(), rotation.end(), pose.begin() + 3);
      return pose;
    };
    return Captured([&] { return Ikfunc::ArmFk(point); });
  }
};

TEST_F(Forward, GivesTiesToTheEarlierComponentAndZerosAsPlus) {
  const double half = static_cast<float>(std::sqrt(0.5f));  // the norm is 1 to single precision
  const std::pair<Rotation, Ori> cases[] = {
      {{1.000001, 0, 0, 0, 1.000001, 0, 0, 0, 1.000001}, Ori(1, 0, 0, 0)},  // x: sqrt(-2.5e-7)
      {{-1, 0, 0, 0, -1, 0, 0, 0, 1}, Ori(0, 0, 0, 1)},
      {{1, 0, 0, 0, 0, 1, 0, -1, 0}, Ori(half, -half, 0, 0)},
      {{0, -1, 0, -1, 0, 0, 0, 0, -1}, Ori(0, half, -half, 0)},
      {{-1, 0, 0, 0, 0, -1, 0, -1, 0}, Ori(0, 0, half, -half)}};
  for (const auto& [rotation, expected] : cases) {
    RoadPoint point;
    EXPECT_EQ(Forwarded(rotation, point), kSilentTrue);
    EXPECT_EQ(All(point.orientation), All(expected));
    for (const double part : All(point.orientation)) EXPECT_TRUE(part != 0 || !std::signbit(part));
  }
}

TEST_F(Forward, OverwritesThePoseAloneAndNothingWhenTheMatrixIsNoNumber) {
  RoadPoint point = From({7, 8, 9, 1, 0, 0, 0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 1});
  EXPECT_EQ(Forwarded({1, 0, 0, 0, -1, 0, 0, 0, -1}, point), kSilentTrue);
  const Numbers expected = {0.1, 0.2, 0.3, 0, 1, 0, 0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 1};
  EXPECT_EQ(All(point), expected);
  EXPECT_EQ(Forwarded({1, 0, 0, 0, 1, 0, 0, 0, kNan}, point),
            BoolOutcome(false, "", "Error while converting to quaternion!\n"));
  EXPECT_EQ(All(point), expected);
}

}  // namespace
