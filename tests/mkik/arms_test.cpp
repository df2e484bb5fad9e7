#include "../qal/arms.h"

#include <algorithm>
#include <kdl/chainfksolverpos_recursive.hpp>

#include "../../src/qal/model/closed_form_model.h"
#include "../../src/qal/model/described_chain.h"
#include "../../src/qal/model/frames.h"
#include "../../src/qal/model/general_arm.h"
#include "../solver/urdf_chain.h"

namespace qal {
namespace {

using closed_form::Solutions;

class EveryArm : public testing::TestWithParam<const char*> {
 protected:
  Frame Forward(const Joints& q) const { return qal::Forward(fitted_.model, q); }

  Solutions Solve(const Frame& target) const { return qal::Solve(fitted_.model, target); }

  // At least one solution; each reaches the target, lies in (-pi, pi] and stands once.
  void ExpectSound(const Solutions& solutions, const Frame& target, double tolerance) const {
    ASSERT_GT(solutions.Count(), 0u);
    for (const Joints& solution : solutions) {
      ASSERT_LE(LargestDifference(Forward(solution), target), tolerance);
      for (const double joint : solution) ASSERT_TRUE(joint > -kPi && joint <= kPi);
      for (const Joints* other = solutions.begin(); other != &solution; ++other) {
        ASSERT_GT(LargestDifference(solution, *other), 1e-8);
      }
    }
  }

  RandomJoints random_{2.967059678};
  const ArmDescription arm_ = Describe(GetParam());
  const FittedModel fitted_ = *MakeModel(arm_);
};

// Wrist (model angle 5) and elbow (model angle 3), alone and together, on the spot and 1e-16 to
// 1e-4 rad from it; the other joints anywhere or at right angles. ikcheck finds the shoulder's.
TEST_P(EveryArm, AnswersSingularPosesWithJointsThatReachThem) {
  const auto put = [&](Joints& q, size_t j, double angle) {
    if (!fitted_.member) return;  // its singularities are elsewhere
    const closed_form::Body& body = BodyOf(*fitted_.member);
    q[j] = body.direction[j] * (angle - body.zero[j]);
  };
  for (int i = 0; i < 3000; ++i) {
    Joints joints = random_();
    if (i % 3 == 0) {
      for (size_t j = 0; j < 6; ++j) put(joints, j, std::round(joints[j] / kPi * 2) * kPi / 2);
    }
    const double off = i % 13 == 0 ? 0.0 : std::pow(10.0, -17 + i % 13) * (i % 4 < 2 ? 1 : -1);
    if (i % 7 < 5) put(joints, 4, (i % 5 < 2 ? 0 : kPi) + off);
    if (i % 7 > 3) put(joints, 2, (i % 5 < 3 ? 0 : kPi) + off);
    SCOPED_TRACE(testing::PrintToString(joints));
    const Frame target = Forward(joints);
    ExpectSound(Solve(target), target, 5e-11);
    if (HasFatalFailure()) return;
  }
}

// Another method that knows nothing of families, with solutions that are found another way.
TEST_P(EveryArm, HasAsManySolutionsAsContinuationFinds) {
  const closed_form::GeneralArm general = MakeGeneralArm(MakeChain(arm_, AxesOf(arm_)[4].point));
  for (int i = 0; i < 200; ++i) {
    const Joints joints = random_();
    const Frame target = Forward(joints);
    EXPECT_EQ(Solve(target).Count(), closed_form::Solve(general, target).Count())
        << testing::PrintToString(joints);
  }
}

// Finite, but not its square.
TEST_P(EveryArm, RefusesPositionsThatOverflow) {
  for (int i = 0; i < 3; ++i) {
    Frame target = Forward(random_());
    target.position.element[i] = 1e200;
    EXPECT_EQ(Solve(target).Count(), 0u) << i;
  }
}

// That a URDF is read as another library reads it; the tables are in the tests of io/.
TEST_P(EveryArm, HasTheForwardKinematicsOfAnIndependentLibrary) {
  const std::string path = std::string(QAL_ARMS_DIR "/") + GetParam();
  if (path.find(".urdf") == std::string::npos) return;
  const KDL::Chain chain = ReadUrdfChain(path, arm_.tip);
  ASSERT_EQ(chain.getNrOfJoints(), 6u);
  KDL::ChainFkSolverPos_recursive kdl(chain);
  KDL::JntArray q(6);
  for (int i = 0; i < 200; ++i) {
    const Joints joints = random_();
    std::copy(joints.begin(), joints.end(), q.data.data());
    KDL::Frame expected;
    ASSERT_GE(kdl.JntToCart(q, expected), 0);
    Frame frame;
    std::copy(expected.p.data, expected.p.data + 3, frame.position.element);
    std::copy(expected.M.data, expected.M.data + 9, frame.rotation.row[0].element);
    ASSERT_LE(LargestDifference(Forward(joints), frame), 1e-12);
  }
}

INSTANTIATE_TEST_SUITE_P(Arms, EveryArm, testing::ValuesIn(kArmFiles), ArmName);

// Everything at once: the wrist's centre on axis 1 and on axis 2, axis 6 along axis 4 or axis 2.
TEST(Solve, AnswersThePoseInTheArmsOwnOrigin) {
  closed_form::SphericalWristArm spherical = {};
  spherical.body = {kIdentity, 0, 0, 0.5, 0.5, kIdentity.rotation, {}, {1, 1, 1, 1, 1, 1}, {}, 0};
  spherical.lean = spherical.skew = {0, 1};
  const closed_form::ParallelAxesArm parallel = {spherical.body, 0, 0};
  const auto expect_reached = [](const auto& arm) {
    const Solutions solutions = closed_form::Solve(arm, kIdentity);
    EXPECT_GT(solutions.Count(), 0u);
    for (const Joints& solution : solutions) {
      EXPECT_LE(LargestDifference(Forward(arm, solution.data()), kIdentity), 1e-15);
    }
  };
  expect_reached(spherical);
  expect_reached(parallel);
}

}  // namespace
}  // namespace qal
