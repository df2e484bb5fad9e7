#include "../../src/qal/model/closed_form_model.h"
#include "../../src/qal/model/frames.h"
#include "../../src/qal/model/nearest_member.h"
#include "../qal/arms.h"

namespace qal {
namespace {

// An arm of the family with the origin of each joint moved, by what rounding leaves, by what is
// typical and by almost what a family takes.
struct Case {
  const char* file;
  double angle_rad;
  double distance_m;
};

ArmDescription Moved(const Case& by) {
  std::mt19937 engine(20261125);
  std::uniform_real_distribution<double> part(-1, 1);
  const auto draw = [&](double most) {
    return Vec3{most * part(engine), most * part(engine), most * part(engine)};
  };
  ArmDescription arm = Describe(by.file);
  for (JointDescription& joint : arm.joints) {
    Transform moved = FromRollPitchYaw(draw(by.angle_rad));
    moved.position = draw(by.distance_m);
    joint.origin = joint.origin * moved;
  }
  return arm;
}

class NearArm : public testing::TestWithParam<Case> {
 protected:
  const ArmDescription arm_ = Moved(GetParam());
  const FittedModel fitted_ = *MakeModel(arm_);
};

// What differs from the described joints by a nanometre is wrong here: the model has to be the arm.
TEST_P(NearArm, IsSolvedAsItIsDescribed) {
  EXPECT_TRUE(fitted_.polished);
  RandomJoints random(kPi);
  int missed = 0;
  for (int i = 0; i < 2000; ++i) {
    const Joints joints = random();
    SCOPED_TRACE(testing::PrintToString(joints));
    const Frame target = ToFrame(TipFrame(arm_, joints));
    const closed_form::Solutions solutions = Solve(fitted_.model, target);
    double nearest = 2 * kPi;
    for (const Joints& solution : solutions) {
      ASSERT_LE(LargestDifference(ToFrame(TipFrame(arm_, solution)), target), 1e-12);
      for (const double joint : solution) ASSERT_TRUE(joint > -kPi && joint <= kPi);
      for (const Joints* other = solutions.begin(); other != &solution; ++other) {
        ASSERT_GT(LargestDifference(solution, *other), 1e-6);
      }
      nearest = std::min(nearest, LargestDifference(solution, joints));
    }
    if (nearest > 1e-6) ++missed;
  }
  EXPECT_EQ(missed, 0);
}

// The sum of the squares to the nearest member is not above that to the arm that was moved, itself
// a member.
TEST_P(NearArm, HasTheLeastDeviationFromItsNearestMember) {
  const Axes axes = AxesOf(arm_);
  const AxisConditions& conditions = ConditionsOf(fitted_.family);
  const Axes nearest = NearestMember(axes, conditions);
  for (const AxisCondition& condition : conditions) EXPECT_LE(Unmet(nearest, condition), 1e-14);
  const auto squares = [&](const Axes& from) {
    double sum = 0;
    for (size_t j = 0; j < axes.size(); ++j) {
      const AxisDeviation off = DeviationOf({axes[j], axes[j], axes[j], axes[j], axes[j], axes[j]},
                                            {from[j], from[j], from[j], from[j], from[j], from[j]});
      sum += std::pow(off.angle_rad / kFamilyAngleToleranceRad, 2) +
             std::pow(off.distance_m / kFamilyDistanceToleranceM, 2);
    }
    return sum;
  };
  EXPECT_LE(squares(nearest), squares(AxesOf(Describe(GetParam().file))));
}

std::vector<Case> Cases() {
  std::vector<Case> cases;
  for (const char* file : kArmFiles) {
    const FittedModel fitted = *MakeModel(Describe(file));
    if (!fitted.exact || fitted.family == Family::kOffsetWrist) continue;
    for (const auto& [angle, distance] : {std::pair(2e-10, 1e-10), {1e-4, 1e-4}, {2e-3, 4e-4}}) {
      cases.push_back({file, angle, distance});
    }
  }
  cases.push_back({"laboratory_offset.urdf", 2e-11, 1e-11});
  return cases;
}

std::string CaseName(const testing::TestParamInfo<Case>& arm) {
  return ArmName({arm.param.file, 0}) + "_" + std::to_string(arm.index % 3);
}

INSTANTIATE_TEST_SUITE_P(Arms, NearArm, testing::ValuesIn(Cases()), CaseName);

// Its solutions come near to each other in many places, where polishing would lose them.
TEST(OffsetWrist, IsSolvedAsAGeneralArmWhereItIsNotTheMember) {
  const FittedModel fitted = *MakeModel(Moved({"laboratory_offset.urdf", 1e-4, 1e-4}));
  EXPECT_EQ(fitted.family, Family::kGeneral);
}

TEST(Geometry, IsTheNearestMembersWhereThatIsWanted) {
  const ArmDescription arm = Moved({"bench_parallel.urdf", 1e-3, 1e-4});
  const FittedModel nominal = *MakeModel(arm, Geometry::kNominal);
  EXPECT_FALSE(nominal.polished || nominal.exact);
  const TipDifference off = DifferenceOf(*nominal.member, arm, 100);
  EXPECT_GT(off.position_m, 1e-4);
  EXPECT_LT(off.position_m, 1e-2);
  EXPECT_TRUE(MakeModel(Describe("bench_parallel.urdf"))->exact);
}

}  // namespace
}  // namespace qal
