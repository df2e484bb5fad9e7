#include <gtest/gtest.h>

#include <cmath>

#include "captured.h"
#include "kinematics/ikfunc.h"
#include "scripted_solver.h"
#include "waypoints.h"

namespace {

using Rotation = std::array<double, 9>;

constexpr char kError[] = "Error while converting to quaternion!\n";

class Forward : public ScriptedSolver {
 protected:
  // The solver answers position (1, 2, 3) and `rotation` from here on.
  static void AnswerWith(const Rotation& rotation) {
    script.forward = [rotation](const Joints&) {
      SolverPose pose = {1, 2, 3};
      std::copy(rotation.begin(), rotation.end(), pose.begin() + 3);
      return pose;
    };
  }

  static Ori QuaternionOf(const Rotation& rotation) {
    AnswerWith(rotation);
    RoadPoint point;
    EXPECT_TRUE(Ikfunc::ArmFk(point));
    return point.orientation;
  }
};

TEST_F(Forward, ConvertsPlainMatricesExactlyAndGivesTiesToTheEarlierComponent) {
  const double half = static_cast<float>(std::sqrt(0.5f));  // the norm is 1 to single precision
  const std::pair<Rotation, Ori> cases[] = {
      {{1, 0, 0, 0, 1, 0, 0, 0, 1}, Ori(1, 0, 0, 0)},
      {{1, 0, 0, 0, -1, 0, 0, 0, -1}, Ori(0, 1, 0, 0)},
      {{-1, 0, 0, 0, 1, 0, 0, 0, -1}, Ori(0, 0, 1, 0)},
      {{-1, 0, 0, 0, -1, 0, 0, 0, 1}, Ori(0, 0, 0, 1)},
      {{1, 0, 0, 0, 0, 1, 0, -1, 0}, Ori(half, -half, 0, 0)},    // w = x
      {{0, -1, 0, -1, 0, 0, 0, 0, -1}, Ori(0, half, -half, 0)},  // x = y
      {{-1, 0, 0, 0, 0, -1, 0, -1, 0}, Ori(0, 0, half, -half)},  // y = z
  };
  for (const auto& [rotation, expected] : cases) {
    const Ori q = QuaternionOf(rotation);
    EXPECT_EQ(All(q), All(expected));
    for (const double part : All(q)) EXPECT_FALSE(part == 0.0 && std::signbit(part));
  }
}

// Every largest component with every sign of the others: the quaternion comes back, the largest
// component made positive.
TEST_F(Forward, TakesSignsThatFitTheLargestComponent) {
  const double norm = std::sqrt(49.0 + 25.0 + 9.0 + 1.0);
  for (size_t largest = 0; largest < 4; ++largest) {
    for (unsigned signs = 0; signs < 8; ++signs) {
      std::array<double, 4> q;
      double magnitude = 1.0;
      unsigned bit = 1;
      for (size_t i = 0; i < 4; ++i) {
        q[i] = 7.0 / norm;
        if (i == largest) continue;
        q[i] = ((signs & bit) != 0 ? -magnitude : magnitude) / norm;
        magnitude += 2.0;
        bit <<= 1;
      }
      const auto [w, x, y, z] = q;
      const Ori found =
          QuaternionOf({1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y),  //
                        2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x),  //
                        2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)});
      for (size_t i = 0; i < 4; ++i) {
        EXPECT_NEAR(All(found)[i], q[i], 2e-7) << "largest " << largest << ", signs " << signs;
      }
    }
  }
}

// Digits from an evaluation apart, with every step rounded to single precision but the norm.
TEST_F(Forward, RoundsEachStepToSinglePrecision) {
  EXPECT_EQ(
      All(QuaternionOf({0.098, -0.992, 0.083, 0.189, -0.063, -0.98, 0.977, 0.112, 0.182})),
      All(Ori(0.5515885949134827, 0.4947221577167511, -0.40527769923210144, 0.5354903936386108)));
}

TEST_F(Forward, OverwritesThePoseAlone) {
  AnswerWith({1, 0, 0, 0, -1, 0, 0, 0, -1});
  RoadPoint point = Waypoint(Pos(7, 8, 9), {0.1, 0.2, 0.3, 0.4, 0.5, 0.6});
  point.ik_flag = true;
  RoadPoint expected = point;
  expected.position = Pos(1, 2, 3);
  expected.orientation = Ori(0, 1, 0, 0);
  EXPECT_EQ(Captured([&] { return Ikfunc::ArmFk(point); }), Outcome<bool>(true, "", ""));
  EXPECT_EQ(All(point), All(expected));
  EXPECT_EQ(script.asked_forward, (std::vector<Joints>{{0.1, 0.2, 0.3, 0.4, 0.5, 0.6}}));
}

TEST_F(Forward, LeavesEverythingAndSaysSoWhenTheMatrixIsNoNumber) {
  for (const size_t diagonal : {0, 4, 8}) {
    Rotation rotation = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    rotation[diagonal] = kNan;
    AnswerWith(rotation);
    RoadPoint point = Waypoint(Pos(7, 8, 9), {0.1, 0.2, 0.3, 0.4, 0.5, 0.6});
    const Numbers before = All(point);
    EXPECT_EQ(Captured([&] { return Ikfunc::ArmFk(point); }), Outcome<bool>(false, "", kError));
    EXPECT_EQ(All(point), before);
  }
}

}  // namespace
