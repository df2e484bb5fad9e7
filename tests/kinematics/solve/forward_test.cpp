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
  static std::array<double, 4> QuaternionOf(const Rotation& rotation) {
    RoadPoint point;
    EXPECT_EQ(Forwarded(rotation, point), kSilentTrue);
    return All(point.orientation);
  }
};

// The last one's digits are from an evaluation apart, with every step rounded but the norm.
TEST_F(Forward, GivesTiesToTheEarlierComponentZerosAsPlusAndRoundsEachStepToSinglePrecision) {
  const double half = static_cast<float>(std::sqrt(0.5f));  // the norm is 1 to single precision
  const std::pair<Rotation, Ori> cases[] = {
      {{1.000001, 0, 0, 0, 1.000001, 0, 0, 0, 1.000001}, Ori(1, 0, 0, 0)},  // x: sqrt(-2.5e-7)
      {{-1, 0, 0, 0, -1, 0, 0, 0, 1}, Ori(0, 0, 0, 1)},
      {{1, 0, 0, 0, 0, 1, 0, -1, 0}, Ori(half, -half, 0, 0)},
      {{0, -1, 0, -1, 0, 0, 0, 0, -1}, Ori(0, half, -half, 0)},
      {{-1, 0, 0, 0, 0, -1, 0, -1, 0}, Ori(0, 0, half, -half)},
      {{0.098, -0.992, 0.083, 0.189, -0.063, -0.98, 0.977, 0.112, 0.182},
       Ori(0.5515885949134827, 0.4947221577167511, -0.40527769923210144, 0.5354903936386108)}};
  for (const auto& [rotation, expected] : cases) {
    EXPECT_EQ(QuaternionOf(rotation), All(expected));
    for (const double part : QuaternionOf(rotation)) EXPECT_TRUE(part != 0 || !std::signbit(part));
  }
}

// Every largest component with every sign of the others: q comes back, its largest part positive.
TEST_F(Forward, TakesSignsThatFitTheLargestComponent) {
  for (size_t i = 0; i < 32; ++i) {
    std::array<double, 4> q = {7, i & 1 ? 5.0 : -5.0, i & 2 ? 3.0 : -3.0, i & 4 ? 1.0 : -1.0};
    for (double& part : q) part /= std::sqrt(49.0 + 25 + 9 + 1);
    std::rotate(q.begin(), q.begin() + i / 8, q.end());
    RoadPoint point = Waypoint(Pos(), {}, Ori(q[0], q[1], q[2], q[3]));
    Rotation rotation;
    Ikfunc::CountEerotEetrans(point, rotation.data(), point.jointpos);
    ExpectNear(QuaternionOf(rotation), q, 2e-7);
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
