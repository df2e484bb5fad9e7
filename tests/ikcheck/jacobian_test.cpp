#include "../../tools/ikcheck/jacobian.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "../../solver/reference_arm.h"
#include "../../tools/ikcheck/measures.h"

namespace {

using namespace qal::ikcheck;
namespace arm = qal::reference_arm;

// What has to be zero at a wrist, elbow or shoulder singularity of the reference arm.
TEST(Jacobian, FindsAllKindsOfSingularities) {
  const Options options = {QAL_SOUND_SOLVER, 100, 20261124, 5.0};
  Exchange exchange;
  Session session(options, exchange, 1.2);
  std::array<int, 3> found = {};  // wrist, elbow, shoulder
  for (const auto& [q, joint] : FindSingularities(session, 8)) {
    const double pitch = q[1] + q[2];
    const double radius = arm::kShoulderOffsetM + arm::kUpperArmM * std::sin(q[1]) +
                          arm::kForearmM * std::cos(pitch) + arm::kElbowOffsetM * std::sin(pitch);
    const double stretch = std::cos(q[2] - std::atan2(arm::kElbowOffsetM, arm::kForearmM));
    const bool zero[] = {std::sin(q[4]) == 0 || std::fabs(q[4]) == kPi, std::fabs(stretch) < 1e-8,
                         std::fabs(radius) < 1e-8};
    for (size_t kind = 0; kind < found.size(); ++kind) found[kind] += zero[kind];
    EXPECT_TRUE(zero[0] || zero[1] || zero[2]) << testing::PrintToString(q);
    Joints beside = q;
    beside[joint] += 1e-5;
    EXPECT_LT(SmallestSingularValue(session, q), kSingularValue);
    EXPECT_GT(SmallestSingularValue(session, beside), kSingularValue);
  }
  for (const int count : found) EXPECT_GT(count, 5);
}

TEST(Measures, TakeWholeTurnsForNothingAndNanForTheWorst) {
  const double nan = std::nan("");
  EXPECT_NEAR(Difference(Joints{kPi, 1, 0, 0, 0, 0}, Joints{-kPi, 1 + 4 * kPi, 0.25, 0, 0, 0}),
              0.25, 1e-15);
  EXPECT_TRUE(std::isnan(Difference(Joints{nan, 0, 0, 0, 0, 0}, Joints{0, 1, 0, 0, 0, 0})));
  const Pose pose = {{0, 2, 0}, Rotation::Identity()};
  Pose other = pose;
  other.position[1] = 1;
  other.rotation(1, 0) = -0.5;
  EXPECT_EQ(Difference(pose, other).position_m, 1.0);
  EXPECT_EQ(Difference(pose, other).element, 0.5);
  EXPECT_EQ(Difference(pose, other).Size(), 1.0);
  other.position[0] = nan;
  EXPECT_TRUE(std::isnan(Difference(pose, other).Size()));

  EXPECT_EQ(OffRotation(pose.rotation), 0.0);
  const Rotation mirrored = Eigen::Vector3d(-1, 1, 1).asDiagonal();
  const Rotation scaled = Eigen::Vector3d(1, 1.5, 1).asDiagonal();
  Rotation broken = pose.rotation;
  broken(2, 0) = nan;
  EXPECT_EQ(OffRotation(mirrored), 2.0);
  EXPECT_EQ(OffRotation(scaled), 1.25);
  EXPECT_TRUE(std::isnan(OffRotation(broken)));
}

}  // namespace
