#include "qal/plan/classic.h"

#include <kinematics/ikfunc.h>

#include <cstring>
#include <optional>

#include "../../io/loaded_arm.h"
#include "arms.h"
#include "qal/model/rotations.h"

namespace qal::classic {
namespace {

using Road = std::vector<RoadPoint>;

State ToState(const RoadPoint& point) {
  const Pos& p = point.position;
  const Ori& q = point.orientation;
  State state = {{}, {{p.x, p.y, p.z}, {q.w, q.x, q.y, q.z}}};
  std::copy(point.jointpos, point.jointpos + 6, state.joints.begin());
  return state;
}

RoadPoint AtJoints(const Joints& joints) {
  RoadPoint point;
  std::copy(joints.begin(), joints.end(), point.jointpos);
  EXPECT_TRUE(Ikfunc::ArmFk(point));
  return point;
}

// To the bit, zeros' signs included: `road` are the points of `plan` from `first` on. The last ones
// of a line may differ: Ikfunc appends the end unseen.
void ExpectSame(const Road& road, const Plan& plan, size_t first, size_t last_left_out) {
  ASSERT_TRUE(plan) << Text(plan.error().error);
  ASSERT_EQ(road.size() + first, plan->size());
  for (size_t i = 0; i + last_left_out < road.size(); ++i) {
    const State expected = ToState(road[i]);
    ASSERT_EQ(0, std::memcmp(&expected, &(*plan)[i + first], sizeof(State))) << "point " << i;
  }
}

// Between ends that every profile can be planned for.
struct Case {
  RoadPoint start, line_end, move_end;
  Ends line;
};

Case RandomCase(RandomJoints& random) {
  Joints joints = random();
  const Joints offset = {0, 0.3, 0.2, 0, 1, 0};
  for (size_t j = 0; j < 6; ++j) joints[j] += offset[j];
  Case made;
  made.start = made.line_end = AtJoints(joints);
  const Joints along = random();
  made.line_end.position = made.start.position + Pos(0.2 * along[0], 0.2 * along[1], 0.05);
  made.line = {ToState(made.start), ToState(made.line_end).pose};
  EXPECT_TRUE(Ikfunc::ArmIk(made.line_end, made.start.jointpos));
  for (double& joint : joints) joint -= 0.6;
  made.move_end = AtJoints(joints);
  return made;
}

TEST(Classic, PlansThePointsOfIkfuncToTheBit) {
  const Arm arm = Arm::Reference();
  RandomJoints random(0.2);
  for (int seed = 0; seed < 3; ++seed) {
    SCOPED_TRACE(seed);
    auto [start, end, to, line] = RandomCase(random);  // Ikfunc wants them writable
    Road road(static_cast<size_t>(Ikfunc::CountLineSize(start, end, 10)));
    ASSERT_TRUE(
        Ikfunc::CountLineToBuffer(start, end, static_cast<int>(road.size()), road.data(), 10));
    ExpectSame(road, FixedLine(arm, line, 10), 0, 1);

    road.assign(1000, {});
    road.resize(static_cast<size_t>(Ikfunc::CountLineToBuffer(start, end, 1.5, road.data())));
    ExpectSame(road, FineLine(arm, line, 1.5), 0, 1);

    road.clear();
    ASSERT_TRUE(Ikfunc::CountLineToBuffer(start, end, &road, 20));
    ExpectSame(road, RampedLine(arm, line, 20), 0, 1);

    road.clear();
    ASSERT_LE(0, Ikfunc::CountSRunCurvelLineToBuffer(start, end, &road, 0, 1, 10, 3000));
    ExpectSame(road, SCurveLine(arm, line, {1, 10, 3000}), 1, 0);

    const State from = ToState(start);
    road.assign(static_cast<size_t>(Ikfunc::CountCurvelLineSize(start, to, 25)), start);
    ASSERT_TRUE(
        Ikfunc::CountCurveLineToBuffer(start, to, static_cast<int>(road.size()), road.data()));
    ExpectSame(road, FixedMove(arm, from, ToState(to), 25), 0, 0);

    road.clear();
    ASSERT_TRUE(Ikfunc::CountCurvelLineToBuffer(start, to, &road, 30));
    ExpectSame(road, RampedMove(arm, from, ToState(to), 30), 0, 0);

    road.clear();
    ASSERT_TRUE(Ikfunc::CountRunCurvelLineToBuffer(start, to, &road, 60, 9000));
    ExpectSame(road, TrapezoidMove(arm, from, ToState(to), 60, 9000), 1, 0);

    RoadPoint jogged;
    ASSERT_TRUE(Ikfunc::ArmIk(start, 1, 4, 0.001, jogged));
    const auto jog = Jog(arm, from, {Frame::kTool, Axis::kY, true, 0.001});
    ASSERT_TRUE(jog) << Text(jog.error().error);
    EXPECT_EQ(ToState(jogged).joints, jog->joints);
  }
}

// Every point of a plan has its own pose, whatever the arm, and the step to it is small.
void ExpectPlan(const Arm& arm, const Plan& plan, const State& start, const Pose& end) {
  ASSERT_TRUE(plan) << Text(plan.error().error);
  EXPECT_LT(LargestDifference(start.joints, plan->front().joints), 1e-9);
  EXPECT_LT(LargestDifference(end, plan->back().pose), 1e-9);
  const Joints* before = &start.joints;
  for (const State& state : *plan) {
    EXPECT_LT(LargestDifference(Forward(arm, state.joints).value(), state.pose), 1e-4);
    EXPECT_LT(LargestDifference(*before, state.joints), 0.1);
    before = &state.joints;
  }
}

// Away from where an arm is stretched: joints at which each has room for 2 cm in every direction.
constexpr Joints kBent = {0.3, -0.6, 0.9, 0.4, 1.1, 0.2};

TEST(Classic, PlansOverEveryArm) {
  for (const char* file : kArmFiles) {
    SCOPED_TRACE(file);
    const Arm arm = io::ReadArm(std::string(QAL_ARMS_DIR "/") + file).arm;
    const State start = {kBent, Forward(arm, kBent).value()};
    Ends line = {start, start.pose};
    line.end.position.z += 0.02;
    const Plan ramped = RampedLine(arm, line, 5);
    ExpectPlan(arm, ramped, start, line.end);
    ExpectPlan(arm, FineLine(arm, line, 2), start, line.end);
    Joints moved = kBent;
    for (double& joint : moved) joint += 0.2;
    const State end = {moved, Forward(arm, moved).value()};
    ExpectPlan(arm, TrapezoidMove(arm, start, end, 50, 10000), start, end.pose);
  }
}

// From joints at which the reference arm reaches 0.2786 m out along x.
TEST(Classic, SaysByValueWhereALineFailsAndWhy) {
  const Arm arm = Arm::Reference();
  const State start = {{0, 0.3, 0.2, 0, 1, 0}, Forward(arm, {0, 0.3, 0.2, 0, 1, 0}).value()};
  const auto by = [&start](double x, double y, double z) {
    Ends ends = {start, start.pose};
    ends.end.position = {ends.end.position.x + x, ends.end.position.y + y, ends.end.position.z + z};
    return ends;
  };
  ArmSettings limits;
  for (JointSettings& joint : limits.joints) joint.upper_rad = 1.05;
  const Arm narrow = Arm::FromDescription(Describe("reference.urdf"), limits).value();
  EXPECT_TRUE(RampedLine(narrow, by(0.1, 0, 0), 20)) << "although joint 5 ends at 1.1 rad";
  Ends turned = by(0.1, 0, 0);
  turned.end.orientation = Quat{std::cos(0.05), 0, std::sin(0.05), 0} * turned.end.orientation;
  // The same pose with the elbow the other way.
  const Joints up = {0.218669, 0.203958, 0.414227, 0, 0.952611, 0.218669};
  const Ends flipped = {{up, Forward(arm, up).value()},
                        Forward(arm, up).value(),
                        Joints{0.218669, 2.031822, 2.911058, 0, 2.911102, 0.218669}};
  // Joint 6 is 0.01 rad within the classic range, and the flange has to turn against the base.
  const State twisted = {{0, 0.3, 0.2, 0, 1, 2.957},
                         Forward(arm, {0, 0.3, 0.2, 0, 1, 2.957}).value()};
  Ends beyond = {twisted, twisted.pose};
  beyond.end.position.y += 0.1;
  const Plan slow = SCurveLine(arm, by(0.01, 0, 0), {0.1F, 10, 3000});

  const struct {
    Plan plan;
    Reason reason;
    std::optional<size_t> point;
    int joint;
    double value, bound;
  } cases[] = {
      {RampedLine(arm, by(0.5, 0, 0), 20), Reason::kOutOfReach, 706, -1, 0, 0},
      {FixedLine(arm, by(0.5, 0, 0), 50), Reason::kOutOfReach, 139, -1, 0, 0},
      {FineLine(arm, by(0.5, 0, 0), 10), Reason::kStepBound, 137, 2, 0.0486821, 0.0436332},
      {RampedLine(arm, beyond, 20), Reason::kJointRange, 23, 5, 2.96786, 2.967059678},
      // The arm's own, narrower limits are for the caller to judge; these are not the operations'.
      {RampedLine(narrow, by(0.5, 0, 0), 20), Reason::kOutOfReach, 706, -1, 0, 0},
      {RampedLine(arm, by(0, 0.002, 0), 10), Reason::kTooShort, {}, -1, 0.002, 0.0022},
      {RampedLine(arm, by(0, 0, 1.5), 10), Reason::kEndsApart, {}, -1, 1.5, 1},
      {RampedLine(arm, turned, 10), Reason::kEndsTurned, {}, -1, 0.1, 0.0001},
      {FixedLine(arm, flipped, 1), Reason::kConfiguration, 0, 1, 1.82786, 0.518},
      {SCurveLine(arm, by(0.01, 0, 0), {1, 10, 3}), Reason::kMotorSpeed, {}, 1, 6.33407, 6},
      {slow, Reason::kAccelerationTooLow, {}, -1, 0.1, 0.2},
      {TrapezoidMove(arm, start, twisted, 1, 2), Reason::kTooManyPoints, {}, -1, 60039, 46340},
      {FixedMove(arm, start, twisted, 0), Reason::kSetting, {}, -1, 0, 1},
  };
  for (const auto& [plan, reason, point, joint, value, bound] : cases) {
    SCOPED_TRACE(&plan - &cases[0].plan);
    ASSERT_FALSE(plan);
    const Error& error = plan.error().error;
    EXPECT_EQ(reason, error.reason) << Text(error);
    EXPECT_EQ(point, plan.error().point);
    EXPECT_EQ(point.has_value() || reason == Reason::kMotorSpeed, plan.error().at.has_value());
    EXPECT_EQ(joint, error.joint) << Text(error);
    EXPECT_NEAR(value, error.value, 1e-5 * std::max(1.0, value)) << Text(error);
    EXPECT_NEAR(bound, error.bound, 1e-6 * std::max(1.0, bound)) << Text(error);
    EXPECT_EQ(reason == Reason::kJointRange, error.detail == kClassicRangeDetail);
  }
}

// A turn about a base axis keeps the tool centre point and turns the tool's axes as seen from the
// base: R' = R(axis, step) R.
TEST(Jog, TurnsAboutTheBasesAxes) {
  const Arm arm = Arm::Reference();
  const Joints joints = {0.4, 0.3, 0.2, 0.3, 1, 0.1};
  const State from = {joints, Forward(arm, joints).value()};
  const Quat quarter[] = {{0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
  for (const Axis axis : {Axis::kX, Axis::kY, Axis::kZ}) {
    const double step = -0.02;
    const auto jogged = Jog(arm, from, {Frame::kBase, axis, true, step});
    ASSERT_TRUE(jogged) << Text(jogged.error().error);
    const Pose reached = Forward(arm, jogged->joints).value();
    EXPECT_LT(Distance(reached.position, from.pose.position), 1e-12);
    const Quat& q = quarter[static_cast<int>(axis)];
    const double s = std::sin(step / 2);
    const Quat turn = {std::cos(step / 2), s * q.x, s * q.y, s * q.z};
    EXPECT_LT(AngleBetween(turn * from.pose.orientation, reached.orientation), 1e-12);
  }
}

}  // namespace
}  // namespace qal::classic
