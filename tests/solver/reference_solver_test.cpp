#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "../../solver/reference_arm.h"
#include "answer.h"

namespace {

// Near singularities the pose says no more of the joints than 1e-5; all but a few lie away. On the
// rim of the workspace, and by 1e-16 to 1e-4 rad inside it, some joints have to reach. Other
// singularities are tested with the code that all arms share.
TEST(ReferenceSolver, SolvesEveryRandomPoseAndFindsTheJointsItCameFrom) {
  std::mt19937 engine(20261124);
  std::uniform_real_distribution<double> range(-2.967059678, 2.967059678);
  int exact = 0;
  for (int i = 0; i < 100000 && !HasFailure(); ++i) {
    Joints joints;
    for (double& joint : joints) joint = range(engine);
    const bool rim = i % 64 == 0;
    if (rim) {  // the elbow stretched or folded
      joints[2] = qal::reference_arm::kForearmLeanRad + (i % 128 == 0 ? 0 : kPi) +
                  (i % 3 - 1) * std::pow(10.0, -4 - i % 13);
    }
    SCOPED_TRACE(testing::PrintToString(joints));
    double nearest = HUGE_VAL;
    std::vector<Joints> solutions;
    EXPECT_NO_THROW(solutions = Solve(Forward(joints), 1e-10));
    for (const Joints& solution : solutions) {
      nearest = std::min(nearest, LargestDifference(solution, joints));
      for (const Joints* other = &solutions[0]; other != &solution; ++other) {
        EXPECT_GT(LargestDifference(solution, *other), 1e-8);
      }
    }
    EXPECT_LT(nearest, rim ? 2 * kPi : 1e-5);
    if (rim || nearest < 1e-8) ++exact;
  }
  EXPECT_GT(exact, 99950);
}

TEST(ReferenceSolver, RefusesWhatIsNoReachablePoseAndLeavesTheListAlone) {
  const Pose good = Forward({0.1, 0.2, 0.3, 0.4, 0.5, 0.6});
  std::vector<Pose> bad(5, good);
  for (size_t i = 3; i < 12; ++i) bad[0][i] *= 1 + 1e-6;
  for (size_t i = 3; i < 12; i += 3) bad[1][i] = -good[i];  // mirrored
  bad[2][4] += 1e-6;                                        // sheared
  bad[3][0] = 1.5;                                          // the arm reaches about 0.9 m
  for (size_t i = 3; i < 12; i += 3) bad[4][i + 1] += 1e-6 * good[i];  // y leans to x, z is theirs
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

// Digits from an independent library's chain of the URDF.
TEST(ReferenceSolver, HasTheForwardKinematicsOfItsUrdf) {
  const Pose expected = {0.417857674002454,  0.0269148535473558, 0.726756185221928,
                         -0.356090984418622, -0.401896507200197, 0.843610341517965,
                         -0.841881599899669, 0.529743523276791,  -0.102991122416769,
                         -0.405505342216536, -0.746894234176817, -0.526986167168813};
  EXPECT_LE(LargestDifference(Forward({0.1, -0.2, 0.3, -0.4, 0.5, -0.6}), expected), 1e-14);
}

}  // namespace
