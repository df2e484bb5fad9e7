#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <limits>
#include <random>
#include <thread>

#include "../../solver/reference_arm.h"
#include "kinematics/ikfast.h"
#include "urdf_chain.h"

namespace {

using Joints = std::array<double, 6>;
using List = ikfast::IkSolutionList<double>;
namespace arm = qal::reference_arm;

constexpr double kPi = 3.14159265358979323846;
constexpr double kJointRangeRad = 2.967059678;
constexpr unsigned kSeed = 20261124;

struct Pose {
  double position[3];
  double rotation[9];
};

Pose Forward(const Joints& joints) {
  Pose pose;
  ikfast::ComputeFk(joints.data(), pose.position, pose.rotation);
  return pose;
}

std::vector<Joints> Solve(const Pose& pose) {
  List list;
  const bool found = ikfast::ComputeIk(pose.position, pose.rotation, nullptr, list);
  EXPECT_EQ(found, list.GetNumSolutions() > 0);
  std::vector<Joints> solutions(list.GetNumSolutions());
  for (size_t i = 0; i < solutions.size(); ++i) {
    EXPECT_EQ(list.GetSolution(i).GetDOF(), 6);
    EXPECT_TRUE(list.GetSolution(i).GetFree().empty());
    list.GetSolution(i).GetSolution(solutions[i].data(), nullptr);
  }
  return solutions;
}

double LargestDifference(const Pose& a, const Pose& b) {
  double largest = 0.0;
  for (int i = 0; i < 3; ++i) largest = std::max(largest, std::fabs(a.position[i] - b.position[i]));
  for (int i = 0; i < 9; ++i) largest = std::max(largest, std::fabs(a.rotation[i] - b.rotation[i]));
  return largest;
}

double LargestDifference(const Joints& a, const Joints& b) {
  double largest = 0.0;
  for (size_t j = 0; j < 6; ++j) largest = std::max(largest, std::fabs(a[j] - b[j]));
  return largest;
}

class RandomJoints {
 public:
  Joints operator()() {
    Joints joints;
    for (double& joint : joints) joint = range_(engine_);
    return joints;
  }

 private:
  std::mt19937 engine_{kSeed};
  std::uniform_real_distribution<double> range_{-kJointRangeRad, kJointRangeRad};
};

// Angle between upper arm and the line from elbow to wrist; 0: stretched out.
double ElbowAngle(const Joints& q) {
  return q[2] + kPi / 2 - std::atan2(arm::kElbowOffsetM, arm::kForearmM);
}

// Distance of the wrist's centre from axis 1.
double ShoulderRadius(const Joints& q) {
  const double pitch = q[1] + q[2];
  return arm::kShoulderOffsetM + arm::kUpperArmM * std::sin(q[1]) +
         arm::kForearmM * std::cos(pitch) + arm::kElbowOffsetM * std::sin(pitch);
}

bool FarFromSingular(const Joints& q) {
  return std::fabs(std::sin(q[4])) > 1e-3 && std::fabs(std::sin(ElbowAngle(q))) > 1e-3 &&
         std::fabs(ShoulderRadius(q)) > 1e-3;
}

// Every solution reaches the pose, lies in (-pi, pi] and stands once.
void ExpectSound(const std::vector<Joints>& solutions, const Pose& target) {
  ASSERT_FALSE(solutions.empty());
  ASSERT_LE(solutions.size(), 8u);
  for (size_t i = 0; i < solutions.size(); ++i) {
    ASSERT_LE(LargestDifference(Forward(solutions[i]), target), 1e-10);  // NaN fails as well
    for (const double joint : solutions[i]) ASSERT_TRUE(joint > -kPi && joint <= kPi);
    for (size_t k = 0; k < i; ++k) ASSERT_GT(LargestDifference(solutions[i], solutions[k]), 1e-8);
  }
}

TEST(ReferenceSolver, SolvesEveryRandomPoseAndFindsTheJointsItCameFrom) {
  RandomJoints random;
  int away = 0;
  for (int i = 0; i < 100000; ++i) {
    const Joints joints = random();
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", pose " << i);
    const Pose target = Forward(joints);
    const std::vector<Joints> solutions = Solve(target);
    ExpectSound(solutions, target);
    if (HasFatalFailure()) return;
    if (!FarFromSingular(joints)) continue;
    ++away;
    ASSERT_TRUE(std::any_of(solutions.begin(), solutions.end(), [&](const Joints& solution) {
      return LargestDifference(solution, joints) < 1e-8;
    }));
  }
  EXPECT_GT(away, 99000);  // the last check has looked at nearly all of them
}

// At the singularities and at 1e-16 to 1e-4 rad beside them, alone and together.
TEST(ReferenceSolver, AnswersSingularPosesWithJointsThatReachThem) {
  const double stretched = std::atan2(arm::kElbowOffsetM, arm::kForearmM) - kPi / 2;
  // Joint 2 that puts the wrist's centre on axis 1 when the elbow is at right angles, found by
  // bisection of the radius, which changes sign between the two ends.
  double low = -2.0;
  double high = 0.0;
  for (int i = 0; i < 100; ++i) {
    const double middle = (low + high) / 2;
    (ShoulderRadius({0, middle, 0.0, 0, 0, 0}) < 0 ? low : high) = middle;
  }
  const double over_axis = low;
  std::vector<Joints> cases;
  for (double off = 1e-16; off < 2e-4; off *= 10) {
    for (const double s : {0.0, off, -off}) {
      for (const double bend : {0.0, kPi}) {
        cases.push_back({0.3, 0.4, 0.2, 1.1, bend + s, -0.7});        // wrist
        cases.push_back({0.3, 0.4, stretched + s, 1.1, bend, -0.7});  // wrist and elbow
        cases.push_back({0.3, over_axis + s, 0.0, 1.1, bend, -0.7});  // wrist and shoulder
      }
      cases.push_back({0.3, 0.4, stretched + s, 1.1, 0.5, -0.7});        // elbow, arm out
      cases.push_back({0.3, 0.4, stretched + kPi + s, 1.1, 0.5, -0.7});  // elbow, arm folded
      cases.push_back({0.3, over_axis + s, 0.0, 1.1, 0.5, -0.7});        // shoulder
    }
  }
  cases.push_back({0, 0, 0, 0, 0, 0});
  cases.push_back({kPi, kPi, kPi, kPi, kPi, kPi});
  for (const Joints& joints : cases) {
    SCOPED_TRACE(testing::PrintToString(joints));
    ExpectSound(Solve(Forward(joints)), Forward(joints));
  }
}

TEST(ReferenceSolver, RefusesWhatIsNoReachablePoseAndLeavesTheListAlone) {
  const Pose good = Forward({0.1, 0.2, 0.3, 0.4, 0.5, 0.6});
  std::vector<Pose> bad;
  for (const double value : {std::nan(""), std::numeric_limits<double>::infinity(), 1e200}) {
    for (int i = 0; i < 3; ++i) {
      bad.push_back(good);
      bad.back().position[i] = value;
    }
    for (int i = 0; i < 9; ++i) {
      bad.push_back(good);
      bad.back().rotation[i] = value;
    }
  }
  Pose scaled = good;
  Pose mirrored = good;
  Pose sheared = good;
  for (double& element : scaled.rotation) element *= 1 + 1e-6;
  for (int i = 0; i < 9; i += 3) mirrored.rotation[i] = -good.rotation[i];
  sheared.rotation[1] += 1e-6;
  Pose far = good;
  far.position[0] = 1.5;  // the arm reaches about 0.9 m
  bad.insert(bad.end(), {scaled, mirrored, sheared, far, Pose{}});

  for (const Pose& pose : bad) {
    List list;
    list.AddSolution(std::vector<ikfast::IkSingleDOFSolutionBase<double>>(6), {});
    EXPECT_FALSE(ikfast::ComputeIk(pose.position, pose.rotation, nullptr, list));
    EXPECT_EQ(list.GetNumSolutions(), 1u);
  }
}

TEST(ReferenceSolver, DescribesItself) {
  EXPECT_EQ(ikfast::GetNumJoints(), 6);
  EXPECT_EQ(ikfast::GetNumFreeParameters(), 0);
  EXPECT_EQ(ikfast::GetFreeParameters(), nullptr);
  EXPECT_EQ(ikfast::GetIkRealSize(), 8);
  EXPECT_EQ(ikfast::GetIkType(), 0x67000001);
  EXPECT_STREQ(ikfast::GetIkFastVersion(), "0x1000004a");
  EXPECT_STRNE(ikfast::GetKinematicsHash(), "");
}

TEST(ReferenceSolver, GivesTheSameAnswersFromTwoThreads) {
  const auto solve_all = [](std::vector<Joints>* all) {
    RandomJoints random;
    for (int i = 0; i < 5000; ++i) {
      const std::vector<Joints> solutions = Solve(Forward(random()));
      all->insert(all->end(), solutions.begin(), solutions.end());
    }
  };
  std::vector<Joints> here;
  std::vector<Joints> there;
  std::thread other(solve_all, &there);
  solve_all(&here);
  other.join();
  EXPECT_EQ(here, there);
}

TEST(ReferenceSolver, HasTheForwardKinematicsOfItsUrdf) {
  const KDL::Chain chain = ReadUrdfChain(QAL_ARMS_DIR "/reference.urdf", "tool0");
  ASSERT_EQ(chain.getNrOfJoints(), 6u);
  KDL::ChainFkSolverPos_recursive kdl(chain);
  KDL::JntArray q(6);
  RandomJoints random;
  for (int i = 0; i < 10000; ++i) {
    const Joints joints = random();
    std::copy(joints.begin(), joints.end(), q.data.data());
    KDL::Frame frame;
    ASSERT_GE(kdl.JntToCart(q, frame), 0);
    Pose expected;
    std::copy(frame.p.data, frame.p.data + 3, expected.position);
    std::copy(frame.M.data, frame.M.data + 9, expected.rotation);
    ASSERT_LE(LargestDifference(Forward(joints), expected), 1e-9) << "seed " << kSeed;
  }
}

}  // namespace
