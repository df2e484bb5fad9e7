#include "qal/explain/explain.h"

#include <functional>

#include "arms.h"
#include "qal/model/chain.h"
#include "qal/model/rotations.h"
#include "seeded.h"

namespace qal {
namespace {

constexpr double kPi = 3.14159265358979323846;

// Where a line first fails, by looking at very many places one after the other: another way than
// the planner's.
struct Looked {
  Cause cause = Cause::kNone;
  double along = 0;
};

Pose Between(const Pose& from, const Pose& to, double part) {
  const auto mix = [part](double a, double b) { return a + part * (b - a); };
  const Quat end = SignedAs(to.orientation, from.orientation);
  const Quat turn = end * Conjugate(from.orientation);
  const double half = std::atan2(std::hypot(turn.x, turn.y, turn.z), turn.w);
  const double scale = half > 0 ? std::sin(part * half) / std::sin(half) : 0;
  const Quat step = {std::cos(part * half), scale * turn.x, scale * turn.y, scale * turn.z};
  return {{mix(from.position.x, to.position.x), mix(from.position.y, to.position.y),
           mix(from.position.z, to.position.z)},
          step * from.orientation};
}

// What happens first between two parts of the way, at the places looked at; `begin` and `before`
// are led on to the last place before it.
Looked LookBetween(const Arm& arm, const State& from, const Pose& to, double end, double& begin,
                   Joints& before) {
  constexpr int kLooks = 2000;
  constexpr double kJumpRad = 0.4;
  size_t count = 0;
  const double start = begin;
  for (int i = 1; i <= kLooks; ++i) {
    const double along = start + (end - start) * i / kLooks;
    const auto candidates = Inverse(arm, Between(from.pose, to, along), before);
    if (!candidates) return {Cause::kOutOfReach, along};
    const auto nearest = std::min_element(
        candidates->begin(), candidates->end(), [&](const Candidate& a, const Candidate& b) {
          return LargestDifference(a.joints, before) < LargestDifference(b.joints, before);
        });
    if (LargestDifference(nearest->joints, before) > kJumpRad) {
      return {candidates->size() < count ? Cause::kBranchEnds : Cause::kSingularity, along};
    }
    if (nearest->refusal) return {Cause::kJointRange, along};
    before = nearest->joints;
    begin = along;
    count = candidates->size();
  }
  return {};
}

// Near their ends solutions move ever quicker: there, looked at again and more closely.
Looked Look(const Arm& arm, const State& from, const Pose& to) {
  Joints before = from.joints;
  double begin = 0;
  Looked looked = LookBetween(arm, from, to, 1, begin, before);
  for (int closer = 0; closer < 2 && looked.cause != Cause::kNone; ++closer) {
    const Looked nearer = LookBetween(arm, from, to, looked.along, begin, before);
    if (nearer.cause != Cause::kNone) looked = nearer;
  }
  return looked;
}

// The line with a change, planned.
bool Works(const Arm& arm, const State& from, const Pose& to, const Change& change) {
  LineLimits limits;
  const auto plans = [&](const Arm& by, const Joints& start, const Pose& end) {
    return PlanLine(by, {start, {}}, end, limits).has_value();
  };
  switch (change.kind) {
    case Change::Kind::kStart:
      return plans(arm, change.joints, to);
    case Change::Kind::kEnd:
    case Change::Kind::kOrientation:
      return plans(arm, from.joints, change.pose);
    case Change::Kind::kShift:
      return plans(arm, change.joints, change.pose) &&
             std::fabs(change.pose.position.x - to.position.x - change.vector.x) < 1e-12;
    case Change::Kind::kTool: {
      Transform tool = arm.tool();
      const auto& r = tool.rotation;
      const auto& [x, y, z] = change.vector;
      tool.position.x += r[0] * x + r[1] * y + r[2] * z;
      tool.position.y += r[3] * x + r[4] * y + r[5] * z;
      tool.position.z += r[6] * x + r[7] * y + r[8] * z;
      const Arm with = arm.WithTool(tool).value();
      // The start is where it was.
      return LargestDifference(Forward(with, change.joints).value(), from.pose) < 1e-6 &&
             plans(with, change.joints, to);
    }
    case Change::Kind::kOrientationError:
      limits.max_orientation_error_rad = change.value;
      return plans(arm, from.joints, to);
    case Change::Kind::kJointMove:
      return PlanJoint(arm, {from.joints}, {change.joints}).has_value() &&
             LargestDifference(Forward(arm, change.joints).value(), to) < 1e-6;
    default:
      return false;
  }
}

bool Has(const Explanation& why, Change::Kind kind) {
  return std::any_of(why.changes.begin(), why.changes.end(),
                     [kind](const Change& change) { return change.kind == kind; });
}

int Wanted() { return CountFromEnvironment("QAL_EXPLANATIONS", 2); }

class Explained : public testing::TestWithParam<const char*> {
 protected:
  const Arm arm_ = Arm::FromDescription(Describe(GetParam())).value();
  std::mt19937 engine_{20261126};

  double Draw(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine_);
  }
  Vec3 Vector(double length) {
    const double x = Draw(-1, 1);
    const double y = Draw(-1, 1);
    const double z = Draw(-1, 1);
    const double scale = length / std::hypot(x, y, z);
    return {scale * x, scale * y, scale * z};
  }
  // Joints well within their range.
  Joints Inner() {
    Joints joints;
    for (size_t j = 0; j < 6; ++j) {
      const JointModel& model = arm_.joints()[j];
      joints[j] = Draw(std::max(0.8 * model.lower_rad.value, -2.5),
                       std::min(0.8 * model.upper_rad.value, 2.5));
    }
    return joints;
  }
  static Pose Moved(const Pose& pose, const Vec3& by, double times = 1) {
    const auto& [x, y, z] = pose.position;
    return {{x + times * by.x, y + times * by.y, z + times * by.z}, pose.orientation};
  }
  bool RefusedAt(const Joints& joints) const {
    const Candidate candidate = Inverse(arm_, Forward(arm_, joints).value(), joints)->front();
    return candidate.refusal.has_value();
  }
  double Reach() const { return LongestReach(Describe(GetParam())); }

  // Draws lines until `Wanted` of them fail as planted, and holds each explanation against what
  // looking says; and that a change of `kind`, which exists by construction, is found.
  void Plant(Cause cause, Change::Kind kind,
             const std::function<bool(State& from, Pose& to)>& draw) {
    int planted = 0;
    int found = 0;
    for (int tries = 0; planted < Wanted() && tries < 400 * Wanted(); ++tries) {
      State from = {};
      Pose to = {};
      if (!draw(from, to)) continue;
      const Looked looked = Look(arm_, from, to);
      if (looked.cause != cause) continue;
      ++planted;
      const Explanation why = ExplainLine(arm_, from, to);
      ASSERT_EQ(why.cause, cause) << testing::PrintToString(from.joints);
      ASSERT_TRUE(why.point);
      // Up to a cycle later, at the tool's speed.
      const double cycle_m = LineLimits().speed_m_s * arm_.cycle_s().value;
      EXPECT_NEAR(why.point->along, looked.along,
                  0.002 + cycle_m / Distance(from.pose.position, to.position))
          << testing::PrintToString(from.joints);
      for (const Change& change : why.changes) {
        EXPECT_TRUE(Works(arm_, from, to, change))
            << static_cast<int>(change.kind) << " of " << testing::PrintToString(from.joints);
      }
      found += Has(why, kind) ? 1 : 0;
    }
    EXPECT_EQ(planted, Wanted());
    EXPECT_GE(found, 0.95 * planted) << found << " of " << planted;
  }
};

// A line that works, and the same some way off, where a part of it is out of reach: shifting it
// back works.
TEST_P(Explained, ALineOutOfReachIsShiftedBack) {
  Plant(Cause::kOutOfReach, Change::Kind::kShift, [&](State& from, Pose& to) {
    from.joints = Inner();
    from.pose = Forward(arm_, from.joints).value();
    to = Moved(from.pose, Vector(Draw(0.05, 0.3) * Reach()));
    if (!PlanLine(arm_, from, to)) return false;
    const Vec3 off = Vector(Draw(0.05, 0.2) * Reach());
    const auto start = Nearest(arm_, Moved(from.pose, off), from.joints);
    if (!start || BranchOf(arm_, start->joints) != BranchOf(arm_, from.joints)) return false;
    from = *start;
    to = Moved(to, off);
    return true;
  });
}

// A line that works with one of its start's solutions, begun with another whose joint leaves its
// range.
TEST_P(Explained, ALineOutOfRangeIsBegunInAnotherBranch) {
  Plant(Cause::kJointRange, Change::Kind::kStart, [&](State& from, Pose& to) {
    const Joints working = Inner();
    from.pose = Forward(arm_, working).value();
    to = Moved(from.pose, Vector(Draw(0.05, 0.4) * Reach()));
    if (!PlanLine(arm_, {working, from.pose}, to)) return false;
    const auto candidates = Inverse(arm_, from.pose, working).value();
    const Candidate& other = candidates[engine_() % candidates.size()];
    from.joints = other.joints;
    return !other.refusal && !PlanLine(arm_, from, to);
  });
}

// A line along which two solutions meet and end, while others go on: it works up to there.
TEST_P(Explained, ALineWhoseBranchEndsStopsBefore) {
  Plant(Cause::kBranchEnds, Change::Kind::kEnd, [&](State& from, Pose& to) {
    const Joints joints = Inner();
    from.pose = Forward(arm_, joints).value();
    const auto candidates = Inverse(arm_, from.pose, joints).value();
    from.joints = candidates[engine_() % candidates.size()].joints;
    to = Moved(from.pose, Vector(Draw(0.1, 0.6) * Reach()));
    if (RefusedAt(from.joints)) return false;
    const auto planned = PlanLine(arm_, from, to);
    return !planned && planned.error().along > 0.01;
  });
}

// Poses of a joint move within every speed, but one step that takes three times what a joint may:
// at a third of the speed it works, and not at all of it.
TEST_P(Explained, PosesTooFastAreSlowedDown) {
  int planted = 0;
  for (int tries = 0; planted < Wanted() && tries < 100 * Wanted(); ++tries) {
    Joints joints = Inner();
    const double cycle_s = arm_.cycle_s().value;
    const size_t leap = 2 + engine_() % 20;
    const size_t joint = engine_() % 6;
    std::vector<TimedPose> poses;
    std::vector<Joints> drawn;
    for (size_t i = 0; i < 25; ++i) {
      for (size_t j = 0; j < 6; ++j) {
        const double most = arm_.joints()[j].velocity_rad_s.value * cycle_s;
        joints[j] += most * (i == leap && j == joint ? 3 : 0.3);
      }
      poses.push_back({Forward(arm_, joints).value(), static_cast<double>(i) * cycle_s});
      drawn.push_back(joints);
    }
    const auto distances = DistanceToSingularities(arm_, drawn[leap]).value();
    if (distances.smallest_singular_value < 0.1 || distances.wrist_rad < 0.2 ||
        distances.elbow_rad < 0.2 || distances.shoulder_m < 0.05) {
      continue;
    }
    ++planted;
    const Explanation why = ExplainPoses(arm_, poses, drawn[0]);
    ASSERT_EQ(why.cause, Cause::kLimit) << testing::PrintToString(drawn[0]);
    EXPECT_EQ(why.point->index, leap);
    ASSERT_TRUE(why.speed);
    EXPECT_EQ(why.speed->joint, static_cast<int>(joint));
    EXPECT_NEAR(why.speed->needed_rad_s, 3 * why.speed->allowed_rad_s, 1e-5);
    const auto slower =
        std::find_if(why.changes.begin(), why.changes.end(),
                     [](const Change& change) { return change.kind == Change::Kind::kSpeed; });
    ASSERT_NE(slower, why.changes.end());
    EXPECT_LE(slower->value, 1.0 / 3 + 1e-9);
    EXPECT_GT(slower->value, 0.32);
    for (TimedPose& pose : poses) pose.time_s /= slower->value;
    EXPECT_TRUE(ExplainPoses(arm_, poses, drawn[0]).works());
  }
  EXPECT_EQ(planted, Wanted());
}

// Where axes 4 and 6 are parallel no line begins, but for one in a direction; a joint move does.
TEST(Explains, ALineThatBeginsInASingularity) {
  const Arm arm = Arm::Reference();
  const Joints joints = {0.2, 0.3, 0.2, 0.4, 0, 0.1};
  const Pose start = Forward(arm, joints).value();
  const Pose end = {{start.position.x - 0.1, start.position.y + 0.1, start.position.z},
                    start.orientation};
  const Explanation why = ExplainLine(arm, {joints, start}, end);
  EXPECT_EQ(why.cause, Cause::kSingularity);
  EXPECT_EQ(why.error.detail, "wrist");
  EXPECT_EQ(why.point->index, 0U);
  ASSERT_TRUE(why.speed);
  EXPECT_LT(why.speed->smallest_singular_value, 1e-9);
  EXPECT_TRUE(Has(why, Change::Kind::kJointMove));
  for (const Change& change : why.changes) {
    EXPECT_TRUE(Works(arm, {joints, start}, end, change)) << static_cast<int>(change.kind);
  }
}

// 1.2 m ahead is out of reach by what is beyond the stretched arm; the way back leads there, and to
// the same place the tool may be longer.
TEST(Explains, APoseOutOfReach) {
  const Arm arm = Arm::Reference();
  const Joints near = {0, 0.3, 0.2, 0, 1, 0};
  Pose pose = Forward(arm, near).value();
  pose.position.x = 1.2;
  const Explanation why = ExplainPose(arm, pose, near);
  ASSERT_EQ(why.cause, Cause::kOutOfReach);
  ASSERT_TRUE(why.way_back);
  const auto& [x, y, z] = *why.way_back;
  const Pose back = {{1.2 + x, y, pose.position.z + z}, pose.orientation};
  EXPECT_TRUE(Nearest(arm, back, near));
  const Pose beyond = {{1.2 + 0.98 * x, 0.98 * y, pose.position.z + 0.98 * z}, pose.orientation};
  EXPECT_FALSE(Nearest(arm, beyond, near));
  EXPECT_TRUE(Has(why, Change::Kind::kShift));
  EXPECT_TRUE(Has(why, Change::Kind::kTool));
}

// Joint 6 has to go by 0.5; a bound of 0.3 forbids it, and the bound told is the least.
TEST(Explains, APoseBeyondTheStepBound) {
  const Arm arm = Arm::Reference();
  const Joints near = {0, 0.3, 0.2, 0, 1, 0};
  const Pose pose = Forward(arm, {0, 0.3, 0.2, 0, 1, 0.5}).value();
  const Explanation why = ExplainPose(arm, pose, near, {0.3});
  ASSERT_EQ(why.cause, Cause::kStepBound);
  EXPECT_EQ(why.error.joint, 5);
  EXPECT_NEAR(why.error.value, 0.5, 1e-9);
  const auto wider = std::find_if(why.changes.begin(), why.changes.end(), [](const Change& change) {
    return change.kind == Change::Kind::kStepBound;
  });
  ASSERT_NE(wider, why.changes.end());
  EXPECT_NEAR(wider->value, 0.5, 2e-4);
  EXPECT_TRUE(Nearest(arm, pose, near, {wider->value}));
  EXPECT_TRUE(ExplainPose(arm, pose, near, {0.6}).works());
}

// 170 degrees are the limit; 190 are also -170, a turn back.
TEST(Explains, AJointMoveOutOfRange) {
  const Arm arm = Arm::Reference();
  const double limit = arm.joints()[5].upper_rad.value;
  const Explanation why = ExplainJoint(arm, {}, Joints{0, 0, 0, 0, 0.5, limit + 0.2});
  ASSERT_EQ(why.cause, Cause::kJointRange);
  EXPECT_EQ(why.error.joint, 5);
  ASSERT_FALSE(why.changes.empty());
  EXPECT_EQ(why.changes[0].kind, Change::Kind::kEnd);
  EXPECT_EQ(why.changes[0].joints[5], limit);
  EXPECT_EQ(ExplainJoint(arm, {}, Joints{0, 0, 0, 0, 0.5, limit + 0.4}).changes[0].joints[5],
            limit + 0.4 - 2 * kPi);
}

// The line of the second step turns joint 6 out of its range. Every change is one of the program,
// which has a motion with it.
TEST(Explains, AStepOfAProgram) {
  const Arm arm = Arm::Reference();
  const Quat down = {0, 1, 0, 0};
  const auto turned = [&](double angle) {
    return Quat{std::cos(angle / 2), 0, 0, std::sin(angle / 2)} * down;
  };
  const Joints ready = {0, 0.35, 0.17, 0, 1.05, 2.8};
  const Program program = {
      {0, 0, 0, 0, 1, 0},
      {JointStep{ready}, LineStep{Pose{{0.3, 0.45, 0.35}, turned(1.05)}, {}, Zone{0.02}},
       LineStep{Pose{{0.3, 0.25, 0.35}, turned(1.05)}}}};
  const ProgramExplanation told = ExplainProgram(arm, program);
  EXPECT_EQ(told.step, 1U);
  EXPECT_LT(LargestDifference(told.start, ready), 1e-9);
  EXPECT_EQ(told.why.cause, Cause::kJointRange);
  EXPECT_EQ(told.why.error.joint, 5);
  ASSERT_FALSE(told.why.changes.empty());
  ASSERT_EQ(told.why.changes.size(), told.changed.size());
  for (const Program& changed : told.changed) EXPECT_TRUE(PlanProgram(arm, changed));
}

INSTANTIATE_TEST_SUITE_P(Arms, Explained,
                         testing::Values("reference.urdf", "foundry_spherical.urdf",
                                         "service_parallel.urdf", "carrying_parallel.toml",
                                         "laboratory_offset.urdf"),
                         ArmName);

}  // namespace
}  // namespace qal
