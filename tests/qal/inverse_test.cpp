#include <cstdlib>
#include <limits>

#include "../../src/qal/model/frames.h"
#include "arms.h"

namespace qal {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

class InverseOfArm : public testing::TestWithParam<const char*> {
 protected:
  static Arm WithLimits(double rad) {
    ArmSettings settings;
    for (JointSettings& joint : settings.joints) {
      joint.lower_rad = -rad;
      joint.upper_rad = rad;
    }
    return Arm::FromDescription(Describe(GetParam()), settings).value();
  }
};

// Joints that stand whole turns from the solver's are found where they stand, even within a narrow
// bound; every candidate has the pose, the nearest admissible one is the nearest of them.
TEST_P(InverseOfArm, FindsJointsAtWhateverTurnTheyStand) {
  const Arm arm = WithLimits(2 * kPi);
  RandomJoints random(2 * kPi);
  for (int i = 0; i < 2000; ++i) {
    const Joints joints = random();
    SCOPED_TRACE(testing::PrintToString(joints));
    const Pose pose = Forward(arm, joints).value();
    const State state = Nearest(arm, pose, joints, {1e-4}).value();
    ASSERT_LE(LargestDifference(state.joints, joints), 1e-5);  // near singularities no less

    const Joints near = random();
    const auto candidates = Inverse(arm, pose, near).value();
    double nearest = kInfinity;
    for (const Candidate& candidate : candidates) {
      double distance = 0;
      for (size_t j = 0; j < 6; ++j) {
        const double moved = std::fabs(candidate.joints[j] - near[j]);
        // No other turn within the limits is nearer.
        for (const double other : {-4 * kPi, -2 * kPi, 2 * kPi, 4 * kPi}) {
          const double turned = candidate.joints[j] + other;
          if (std::fabs(turned) <= 2 * kPi) {
            ASSERT_GE(std::fabs(turned - near[j]), moved);
          }
        }
        ASSERT_LE(std::fabs(candidate.joints[j]), 2 * kPi);
        distance += moved;
      }
      ASSERT_EQ(candidate.distance_rad, distance);
      ASSERT_FALSE(candidate.refusal);
      ASSERT_LE(LargestDifference(Forward(arm, candidate.joints).value(), pose), 1e-11);
      nearest = std::min(nearest, distance);
    }
    const State found = Nearest(arm, pose, near).value();
    double distance = 0;
    for (size_t j = 0; j < 6; ++j) distance += std::fabs(found.joints[j] - near[j]);
    ASSERT_EQ(distance, nearest);
  }
}

INSTANTIATE_TEST_SUITE_P(Arms, InverseOfArm, testing::ValuesIn(kArmFiles), ArmName);

// Joint 2 stands at 0.5: the limits and the bound that refuse it, and those that just don't.
TEST(Nearest, IsRefusedByTheFirstJointThatMayNotAndSaysByWhat) {
  const Joints joints = {0.1, 0.5, 0.3, 0.4, 0.6, 0.7};
  const struct {
    double lower, upper;  // of joint 2
    double near;          // joint 2's
    double step_bound;
    Error expected;
  } cases[] = {
      {-1, 0.5 - 1e-9, 0.5, kInfinity, {Reason::kJointRange, 1, 0.5, 0.5 - 1e-9}},
      {0.75, 1, 0.5, kInfinity, {Reason::kJointRange, 1, 0.5, 0.75}},
      {-1, 0.5 + 1e-9, 0.5, kInfinity, {}},
      {-1, 1, 0.75, 0.125, {Reason::kStepBound, 1, 0.25, 0.125}},
      {-1, 1, 0.75, 0.25 + 1e-9, {}},
      // 0.5 - 2 pi is within, 0.5 is nearer; then the other way round; then neither is within.
      {-6, 1, 0.75, kInfinity, {}},
      {12, 18, 0.75, kInfinity, {}},    // only 0.5 + 4 pi
      {-18, -12, 0.75, kInfinity, {}},  // only 0.5 - 4 pi
      {-6, 0.25, 0.5, 6, {Reason::kStepBound, 1, 2 * kPi, 6}},
      {-5, 0.25, 0.5, kInfinity, {Reason::kJointRange, 1, 0.5, 0.25}},
      {-5.75, -1, -5, kInfinity, {Reason::kJointRange, 1, 0.5 - 2 * kPi, -5.75}},
  };
  for (const auto& [lower, upper, near, step_bound, expected] : cases) {
    ArmSettings settings;
    settings.joints[1].lower_rad = lower;
    settings.joints[1].upper_rad = upper;
    const Arm arm = Arm::FromDescription(Describe("reference.urdf"), settings).value();
    Joints reference = joints;
    reference[1] = near;
    const auto found = Nearest(arm, Forward(arm, joints).value(), reference, {step_bound});
    const auto all = Inverse(arm, Forward(arm, joints).value(), joints).value();
    EXPECT_EQ(all.size(), 8u);
    EXPECT_EQ(Text(found ? Error() : found.error()), Text(expected));
  }
}

TEST(Inverse, RefusesWhatIsNoRequest) {
  const Arm arm = Arm::Reference();
  const Joints joints = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6};
  const Pose good = Forward(arm, joints).value();
  const auto refusal = [&](const Pose& pose, const Joints& near, double bound) {
    const auto answer = Nearest(arm, pose, near, {bound});
    return answer ? "solved" : Text(answer.error());
  };
  Pose pose = good;
  pose.orientation = {};
  EXPECT_EQ(refusal(pose, joints, 1), Text({Reason::kNotAnOrientation, -1, 0}));
  pose = good;
  pose.orientation.x = kInfinity;
  EXPECT_EQ(refusal(pose, joints, 1), Text({Reason::kNotFinite, -1, kInfinity}));
  pose = good;
  pose.position.x += 2;
  EXPECT_EQ(refusal(pose, joints, 1), Text({Reason::kOutOfReach}));
  Joints near = joints;
  near[3] = -kInfinity;
  EXPECT_EQ(refusal(good, near, 1), Text({Reason::kNotFinite, 3, -kInfinity}));
  EXPECT_EQ(Text(Forward(arm, near).error()), Text({Reason::kNotFinite, 3, -kInfinity}));
  EXPECT_EQ(refusal(good, joints, -1), Text({Reason::kSetting, -1, -1, 0, "step_bound_rad"}));
  const auto& [w, x, y, z] = good.orientation;
  pose.position = good.position;
  pose.orientation = {-3 * w, -3 * x, -3 * y, -3 * z};  // the same orientation
  EXPECT_EQ(refusal(pose, joints, 1e-9), "solved");
}

// A gantry whose faults the environment chooses: no answer, or an error, but never an exception.
TEST(ForeignSolver, MayBreakItsContract) {
  const Arm arm =
      Arm::FromSolver(Solver::Load(QAL_FOREIGN_LIBRARIES "/here/libik.so").value()).value();
  const Pose pose = {{0.35, 0, 0.3}, {0, 0, 1, 0}};  // low in front, where the faults are
  const Joints near = {};
  EXPECT_TRUE(Nearest(arm, pose, near));
  const std::pair<const char*, Error> cases[] = {
      {"throws", {Reason::kSolverThrows, -1, 0, 0, "no\nway"}},
      {"throws an int", {Reason::kSolverThrows, -1, 0, 0, "something that is no std::exception"}},
      {"has no memory", {Reason::kSolverThrows, -1, 0, 0, "std::bad_alloc"}},
      {"finds joints and returns false", {Reason::kOutOfReach}},
      {"finds nothing and returns true",
       {Reason::kSolverFault, -1, 0, 0, "ComputeIk says solved, without six joints"}},
      {"has seven joints",
       {Reason::kSolverFault, -1, 0, 0, "ComputeIk says solved, without six joints"}},
  };
  for (const auto& [fault, expected] : cases) {
    ::setenv("QAL_FOREIGN_FAULT", fault, 1);
    EXPECT_EQ(Text(Nearest(arm, pose, near).error()), Text(expected));
  }
  ::setenv("QAL_FOREIGN_FAULT", "throws forward", 1);
  EXPECT_EQ(Text(Forward(arm, near).error()), Text(cases[0].second));
  EXPECT_EQ(Text(DistanceToSingularities(arm, near).error()), Text(cases[0].second));
  ::unsetenv("QAL_FOREIGN_FAULT");
}

}  // namespace
}  // namespace qal
