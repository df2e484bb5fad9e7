#include <gtest/gtest.h>

#include <algorithm>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <random>

#include "../../solver/reference_arm.h"
#include "answer.h"
#include "urdf_chain.h"

namespace {

namespace arm = qal::reference_arm;

Joints RandomJoints() {
  static std::mt19937 engine(20261124);
  std::uniform_real_distribution<double> range(-2.967059678, 2.967059678);
  Joints joints;
  for (double& joint : joints) joint = range(engine);
  return joints;
}

// Expects solutions for the pose of `joints`, each standing once. Returns how far the nearest is
// from `joints`.
double SolveAgain(const Joints& joints) {
  double nearest = HUGE_VAL;
  EXPECT_NO_THROW({
    const std::vector<Joints> solutions = Solve(Forward(joints), 1e-10);
    for (const Joints& solution : solutions) {
      nearest = std::min(nearest, LargestDifference(solution, joints));
      for (const Joints* other = &solutions[0]; other != &solution; ++other) {
        EXPECT_GT(LargestDifference(solution, *other), 1e-8);
      }
    }
  }) << testing::PrintToString(joints);
  EXPECT_LE(nearest, 2 * kPi) << testing::PrintToString(joints);
  return nearest;
}

// Near singularities the pose says no more of the joints than 1e-5; all but a few lie away.
TEST(ReferenceSolver, SolvesEveryRandomPoseAndFindsTheJointsItCameFrom) {
  int exact = 0;
  for (int i = 0; i < 100000 && !HasFailure(); ++i) {
    const double nearest = SolveAgain(RandomJoints());
    EXPECT_LT(nearest, 1e-5);
    if (nearest < 1e-8) ++exact;
  }
  EXPECT_GT(exact, 99950);
}

// At the singularities and at 1e-16 to 1e-4 rad beside them, alone and together.
TEST(ReferenceSolver, AnswersSingularPosesWithJointsThatReachThem) {
  const double out = std::atan2(arm::kElbowOffsetM, arm::kForearmM) - kPi / 2;
  // Joint 2 that puts the wrist's centre on axis 1 while joint 3 is 0: there
  // kShoulderOffsetM + (kUpperArmM + kElbowOffsetM) sin(q2) + kForearmM cos(q2) = 0.
  const double beside = arm::kUpperArmM + arm::kElbowOffsetM;
  const double over_axis = -std::asin(arm::kShoulderOffsetM / std::hypot(beside, arm::kForearmM)) -
                           std::atan2(arm::kForearmM, beside);
  for (int i = 0; i < 42; ++i) {
    const double off = (i % 3 - 1) * std::pow(10.0, -4 - i / 3);
    for (const double bend : {0.0, kPi, 0.5}) {
      SolveAgain({0.3, 0.4, 0.2, 1.1, bend + off, -0.7});
      SolveAgain({0.3, 0.4, out + off, 1.1, bend, -0.7});
      SolveAgain({0.3, 0.4, out + kPi + off, 1.1, bend, -0.7});
      SolveAgain({0.3, over_axis + off, 0.0, 1.1, bend, -0.7});
    }
  }
  SolveAgain({0, 0, 0, 0, 0, 0});
  SolveAgain({kPi, kPi, kPi, kPi, kPi, kPi});
}

TEST(ReferenceSolver, RefusesWhatIsNoReachablePoseAndLeavesTheListAlone) {
  const Pose good = Forward({0.1, 0.2, 0.3, 0.4, 0.5, 0.6});
  std::vector<Pose> bad(4, good);
  for (size_t i = 3; i < 12; ++i) bad[0][i] *= 1 + 1e-6;
  for (size_t i = 3; i < 12; i += 3) bad[1][i] = -good[i];  // mirrored
  bad[2][4] += 1e-6;                                        // sheared
  bad[3][0] = 1.5;                                          // the arm reaches about 0.9 m
  bad.push_back(Pose{});
  for (size_t i = 0; i < 12; ++i) {
    for (const double value : {std::nan(""), HUGE_VAL, 1e200}) {
      bad.push_back(good);
      bad.back()[i] = value;
    }
  }
  for (const Pose& pose : bad) {
    ikfast::IkSolutionList<double> list;
    list.AddSolution(std::vector<ikfast::IkSingleDOFSolutionBase<double>>(6), {});
    EXPECT_FALSE(ikfast::ComputeIk(&pose[0], &pose[3], nullptr, list));
    EXPECT_EQ(list.GetNumSolutions(), 1u);
  }
}

TEST(ReferenceSolver, DescribesItself) {
  using namespace ikfast;
  EXPECT_TRUE(GetNumJoints() == 6 && GetNumFreeParameters() == 0 && GetFreeParameters() == nullptr);
  EXPECT_TRUE(GetIkRealSize() == 8 && GetIkType() == 0x67000001);
  EXPECT_STREQ(GetIkFastVersion(), "0x1000004a");
  EXPECT_STRNE(GetKinematicsHash(), "");
}

TEST(ReferenceSolver, HasTheForwardKinematicsOfItsUrdf) {
  const KDL::Chain chain = ReadUrdfChain(QAL_ARMS_DIR "/reference.urdf", "tool0");
  KDL::JntArray q(6);
  for (int i = 0; i < 10000; ++i) {
    const Joints joints = RandomJoints();
    std::copy(joints.begin(), joints.end(), q.data.data());
    KDL::Frame frame;
    ASSERT_GE(KDL::ChainFkSolverPos_recursive(chain).JntToCart(q, frame), 0);
    Pose expected;
    std::copy_n(frame.M.data, 9, std::copy_n(frame.p.data, 3, &expected[0]));
    ASSERT_LE(LargestDifference(Forward(joints), expected), 1e-9) << testing::PrintToString(joints);
  }
}

}  // namespace
