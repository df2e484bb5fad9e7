#include <Eigen/SVD>
#include <set>

#include "../../src/qal/model/chain.h"
#include "../../src/qal/model/closed_form_model.h"
#include "../../src/qal/model/frames.h"
#include "arms.h"
#include "qal/model/rotations.h"
#include "qal/solve/branch.h"

namespace qal {
namespace {

class Kinematics : public testing::TestWithParam<const char*> {
 protected:
  const ArmDescription description_ = Describe(GetParam());
  const FittedModel fitted_ = *MakeModel(description_);
  // Within a turn whatever the description's limits: joints are drawn from there.
  static ArmSettings Turning() {
    ArmSettings settings;
    for (JointSettings& joint : settings.joints) {
      joint.lower_rad = -kPi;
      joint.upper_rad = kPi;
    }
    return settings;
  }
  const Arm arm_ = Arm::FromDescription(description_, Turning()).value();
};

// R of a unit quaternion, by the sandwich product: another formula than the library's.
Vec3 Rotate(const Quat& q, const Vec3& v) {
  const Vec3 t = {2 * (q.y * v.z - q.z * v.y), 2 * (q.z * v.x - q.x * v.z),
                  2 * (q.x * v.y - q.y * v.x)};
  return {v.x + q.w * t.x + q.y * t.z - q.z * t.y, v.y + q.w * t.y + q.z * t.x - q.x * t.z,
          v.z + q.w * t.z + q.x * t.y - q.y * t.x};
}

// base * (the described chain) * tool; random rotations have each component of the quaternion the
// largest in turn.
TEST_P(Kinematics, GivesThePoseOfTheChainBetweenBaseAndTool) {
  ArmSettings settings = Turning();
  settings.base = FromRollPitchYaw({0.3, -1.2, 2.5});
  settings.base.position = {1, -2, 0.5};
  settings.tool = FromRollPitchYaw({-0.4, 0.7, 1.1});
  settings.tool.position = {0.02, 0.03, 0.15};
  const Arm mounted = Arm::FromDescription(description_, settings).value();
  RandomJoints random(3);
  for (int i = 0; i < 500; ++i) {
    const Joints joints = random();
    const Transform bare = TipFrame(description_, joints);
    const Transform held = settings.base * bare * settings.tool;
    for (const auto& [arm, expected] : {std::pair(arm_, bare), std::pair(mounted, held)}) {
      const Pose pose = Forward(arm, joints).value();
      const auto& [p, q] = pose;
      ASSERT_LE(std::hypot(p.x - expected.position.x, p.y - expected.position.y,
                           p.z - expected.position.z),
                1e-13);
      ASSERT_GE(std::max({q.w, q.x, q.y, q.z}), 0.5);  // the largest is not negative
      ASSERT_NEAR(q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z, 1, 1e-15);
      const double* r = expected.rotation;
      for (int c = 0; c < 3; ++c) {
        const Vec3 column = Rotate(q, {c == 0 ? 1.0 : 0.0, c == 1 ? 1.0 : 0.0, c == 2 ? 1.0 : 0.0});
        ASSERT_LE(std::hypot(column.x - r[c], column.y - r[3 + c], column.z - r[6 + c]), 1e-14);
      }
      ASSERT_LE(LargestDifference(Nearest(arm, pose, joints).value().joints, joints), 1e-5);
    }
  }
}

// Finite differences with h = 1e-5: their truncation is h^2 / 6, their rounding 1e-16 / h.
TEST_P(Kinematics, HasTheJacobianOfFiniteDifferences) {
  constexpr double kStepRad = 1e-5;
  RandomJoints random(3);
  for (int i = 0; i < 200; ++i) {
    const Joints joints = random();
    const JacobianMatrix jacobian = Jacobian(arm_, joints).value();
    for (size_t j = 0; j < 6; ++j) {
      Joints moved = joints;
      moved[j] += kStepRad;
      const Pose after = Forward(arm_, moved).value();
      moved[j] = joints[j] - kStepRad;
      const Pose before = Forward(arm_, moved).value();
      // The rotation between the two, whose angle's third power is nothing.
      const Quat turn = SignedAs(after.orientation * Conjugate(before.orientation), {1, 0, 0, 0});
      const double expected[6] = {(after.position.x - before.position.x) / (2 * kStepRad),
                                  (after.position.y - before.position.y) / (2 * kStepRad),
                                  (after.position.z - before.position.z) / (2 * kStepRad),
                                  turn.x / kStepRad,
                                  turn.y / kStepRad,
                                  turn.z / kStepRad};
      for (int row = 0; row < 6; ++row) {
        ASSERT_NEAR(jacobian.element[row][j], expected[row], 2e-10) << "row " << row << " of " << j;
      }
    }
  }
}

// From a line's angle, 0 to pi / 2.
double Folded(double angle) { return std::fabs(std::remainder(angle, kPi)); }

// By the model's angles, which the measures don't know: axis 6 leaves axis 4 (or axes 2 to 4) with
// model angle 5, the forearm leaves the upper arm with model angle 3, and the wrist's centre is
// x forward of axis 1. At random joints, and on the spot of each singularity.
TEST_P(Kinematics, MeasuresHowFarItsSingularitiesAre) {
  if (!fitted_.exact || fitted_.family == Family::kOffsetWrist) {
    const bool has_them = fitted_.family == Family::kThreeParallelAxes;
    EXPECT_EQ(std::isnan(DistanceToSingularities(arm_, {}).value().wrist_rad), !has_them);
    return;
  }
  const closed_form::Body& body = BodyOf(*fitted_.member);
  RandomJoints random(3);
  for (int i = 0; i < 400; ++i) {
    Joints joints = random();
    const auto put = [&](size_t j, double angle) {
      joints[j] = body.direction[j] * (angle - body.zero[j]);
    };
    if (i % 4 == 1) put(4, i % 8 == 1 ? 0 : kPi);
    if (i % 4 == 2) put(2, i % 8 == 2 ? 0 : kPi);
    const auto angle = [&](size_t j) { return body.direction[j] * joints[j] + body.zero[j]; };
    const Singularities measured = DistanceToSingularities(arm_, joints).value();
    EXPECT_NEAR(measured.wrist_rad, Folded(angle(4)), 1e-14);
    EXPECT_NEAR(measured.elbow_rad, Folded(angle(2)), 2e-13);
    const Frame tip = ToFrame(TipFrame(description_, joints));
    const Vector3 centre = Transposed(body.base.rotation) *
                           (tip.position + tip.rotation * body.centre_in_tool - body.base.position);
    const double forward = centre[0] * std::cos(angle(0)) + centre[1] * std::sin(angle(0));
    EXPECT_NEAR(measured.shoulder_m, std::fabs(forward), 1e-13);

    const JacobianMatrix jacobian = Jacobian(arm_, joints).value();
    const Eigen::Matrix<double, 6, 6> matrix =
        Eigen::Map<const Eigen::Matrix<double, 6, 6, Eigen::RowMajor>>(jacobian.element[0]);
    const double expected =
        Eigen::JacobiSVD<Eigen::Matrix<double, 6, 6>>(matrix).singularValues()(5);
    EXPECT_NEAR(measured.smallest_singular_value, expected, 1e-14);
    const bool singular = i % 4 == 1 || i % 4 == 2;
    EXPECT_LE(measured.smallest_singular_value, singular ? 1e-14 : 1.0);
    if (HasFailure()) FAIL() << testing::PrintToString(joints);
  }
}

// A pose has at most one solution of each branch, so that solutions with different names are all
// that there can be: 8 names for 8 solutions.
TEST_P(Kinematics, SolutionsOfAPoseHaveDifferentBranches) {
  const bool has_them = fitted_.exact && fitted_.family != Family::kOffsetWrist;
  if (!has_them && fitted_.family != Family::kThreeParallelAxes) {
    EXPECT_FALSE(BranchOf(arm_, {}));
    return;
  }
  RandomJoints random(2.5);
  for (int i = 0; i < 100; ++i) {
    const Joints joints = random();
    std::set<std::string> names;
    const std::vector<Candidate> candidates =
        Inverse(arm_, Forward(arm_, joints).value(), joints).value();
    for (const Candidate& candidate : candidates) {
      names.insert(BranchName(BranchOf(arm_, candidate.joints).value()));
    }
    ASSERT_EQ(names.size(), candidates.size()) << testing::PrintToString(joints);
  }
}

// An arm that reaches forward and down, as most are drawn; and the same turned over its axis 1.
TEST(Branches, AreNamedAsTheArmIsSeen) {
  const Arm arm = Arm::Reference();
  const auto name = [&arm](const Joints& joints) {
    return BranchName(BranchOf(arm, joints).value());
  };
  EXPECT_EQ(name({0, 0.3, 0.3, 0, 0.5, 0}), "shoulder front, elbow up, no wrist flip");
  EXPECT_EQ(name({0, 0.3, 0.3, 0, -0.5, 0}), "shoulder front, elbow up, wrist flip");
  EXPECT_EQ(name({0, 1.5, -1.5, 0, 0.5, 0}), "shoulder front, elbow down, no wrist flip");
  EXPECT_EQ(name({0, -1.2, -2, 0, 0.5, 0}), "shoulder rear, elbow up, no wrist flip");
}

INSTANTIATE_TEST_SUITE_P(Arms, Kinematics, testing::ValuesIn(kArmFiles), ArmName);

}  // namespace
}  // namespace qal
