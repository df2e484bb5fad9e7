#include "captured.h"
#include "kinematics/ikfunc.h"
#include "waypoints.h"

namespace {

using Rotation = std::array<double, 9>;

class Forward : public ScriptedSolver {
 protected:
  // From here on the solver answers `rotation`.
  static void AnswerWith(const Rotation& rotation) {
    script.forward = [rotation](const Joints& q) {
      SolverPose pose = GantryForward(q);
      std::copy(rotation.begin(), rotation.end(), pose.begin() + 3);
      return pose;
    };
  }
  static std::array<double, 4> QuaternionOf(const Rotation& rotation) {
    AnswerWith(rotation);
    RoadPoint point;
    EXPECT_TRUE(Ikfunc::ArmFk(point));
    return All(point.orientation);
  }
};

TEST_F(Forward, GivesTiesToTheEarlierComponentAndTakesZerosAsPlus) {
  const double half = static_cast<float>(std::sqrt(0.5f));  // the norm is 1 to single precision
  const std::pair<Rotation, Ori> cases[] = {
      {{1.000001, 0, 0, 0, 1.000001, 0, 0, 0, 1.000001}, Ori(1, 0, 0, 0)},  // x: sqrt(-2.5e-7)
      {{-1, 0, 0, 0, -1, 0, 0, 0, 1}, Ori(0, 0, 0, 1)},
      {{1, 0, 0, 0, 0, 1, 0, -1, 0}, Ori(half, -half, 0, 0)},
      {{0, -1, 0, -1, 0, 0, 0, 0, -1}, Ori(0, half, -half, 0)},
      {{-1, 0, 0, 0, 0, -1, 0, -1, 0}, Ori(0, 0, half, -half)}};
  for (const auto& [rotation, expected] : cases) {
    EXPECT_EQ(QuaternionOf(rotation), All(expected));
    for (const double part : QuaternionOf(rotation)) EXPECT_TRUE(part != 0 || !std::signbit(part));
  }
}

// Every largest component with every sign of the others: q comes back, its largest part positive.
TEST_F(Forward, TakesSignsThatFitTheLargestComponent) {
  for (int largest = 0; largest < 4; ++largest) {
    for (int signs = 0; signs < 16; signs += 2) {
      std::array<double, 4> q;
      for (int k = 0; k < 4; ++k) {
        q[static_cast<size_t>((largest + k) % 4)] =
            ((signs >> k & 1) != 0 ? 2 * k - 7 : 7 - 2 * k) / std::sqrt(49.0 + 25 + 9 + 1);
      }
      const auto [w, x, y, z] = q;
      ExpectNear(QuaternionOf({1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y),
                               2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x),
                               2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)}),
                 q, 2e-7);
    }
  }
}

// Digits from an evaluation apart, with every step rounded to single precision but the norm.
TEST_F(Forward, RoundsEachStepToSinglePrecision) {
  EXPECT_EQ(
      QuaternionOf({0.098, -0.992, 0.083, 0.189, -0.063, -0.98, 0.977, 0.112, 0.182}),
      All(Ori(0.5515885949134827, 0.4947221577167511, -0.40527769923210144, 0.5354903936386108)));
}

TEST_F(Forward, OverwritesThePoseAloneAndNothingWhenTheMatrixIsNoNumber) {
  RoadPoint point = From({7, 8, 9, 1, 0, 0, 0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 1});
  const auto forward = [&] { return Ikfunc::ArmFk(point); };
  AnswerWith({1, 0, 0, 0, -1, 0, 0, 0, -1});
  EXPECT_EQ(Captured(forward), kSilentTrue);
  const Numbers expected = {0.1, 0.2, 0.3, 0, 1, 0, 0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 1};
  EXPECT_EQ(All(point), expected);
  AnswerWith({1, 0, 0, 0, 1, 0, 0, 0, kNan});
  EXPECT_EQ(Captured(forward), BoolOutcome(false, "", "Error while converting to quaternion!\n"));
  EXPECT_EQ(All(point), expected);
}

}  // namespace
