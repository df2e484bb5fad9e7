#include <gtest/gtest.h>
#include <qal/model/rotations.h>
#include <qal/plan/program_stream.h>
#include <qal/plan/sampled.h>
#include <qal/solve/kinematics.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace qal {
namespace {

constexpr double kPi = 3.14159265358979323846;

const Arm& ReferenceArm() {
  static const Arm arm = Arm::Reference();
  return arm;
}

constexpr Joints kStart = {0, 0.3, 0.4, 0, 0.6, 1.5};

// The start's pose, moved [m, base frame].
Pose Moved(double x, double y, double z) {
  Pose pose = *Forward(ReferenceArm(), kStart);
  pose.position = {pose.position.x + x, pose.position.y + y, pose.position.z + z};
  return pose;
}

Zone Within(double tool_m) {
  Zone zone;
  zone.tool_m = tool_m;
  return zone;
}

ProgramMotion Planned(const std::vector<ProgramStep>& steps) {
  const auto motion = PlanProgram(ReferenceArm(), {kStart, steps});
  if (!motion) {
    ADD_FAILURE() << "step " << motion.error().step << ", reason "
                  << static_cast<int>(motion.error().failure.error.reason);
    std::abort();
  }
  return *motion;
}

double SpeedAt(const ProgramMotion& motion, double time_s) {
  constexpr double kStepS = 1e-5;
  return Distance(motion.PoseAt(time_s - kStepS / 2).position,
                  motion.PoseAt(time_s + kStepS / 2).position) /
         kStepS;
}

// A half circle of radius 0.05 m in the plane of x and y, from the start about a point 0.05 m
// ahead of it in y, against the clock as seen from above: through 0.05 m in x. With the arc the
// tool turns by half a turn about z; about a point it may be kept as it is.
TEST(Program, FollowsArcs) {
  const Pose start = Moved(0, 0, 0);
  const Pose end = Moved(0, 0.1, 0);
  Pose turned_end = end;
  turned_end.orientation = Quat{std::cos(0.2), std::sin(0.2), 0, 0} * end.orientation;
  const Vec3 centre = Moved(0, 0.05, 0).position;
  const Vec3 through = Moved(0.05, 0.05, 0).position;
  const struct {
    std::variant<ArcThrough, ArcAbout> arc;
    Quat end;
    double half_rad;  // turned halfway
  } cases[] = {
      {ArcThrough{through, turned_end}, turned_end.orientation, 0.2},
      {ArcThrough{through, turned_end, ArcTurn::kFixed}, end.orientation, 0},
      {ArcAbout{centre, {0, 0, 2}, kPi, ArcTurn::kFixed}, end.orientation, 0},
      {ArcAbout{centre, {0, 0, -2}, -kPi}, Quat{0, 0, 0, 1} * end.orientation, kPi / 2},
  };
  for (const auto& [arc, end_orientation, half_rad] : cases) {
    const ProgramMotion motion = Planned({ArcStep{arc, {}, {}}});
    const double end_s = motion.duration_s();
    EXPECT_LT(Distance(end.position, motion.PoseAt(end_s).position), 1e-9);
    EXPECT_LT(AngleBetween(end_orientation, motion.PoseAt(end_s).orientation), 1e-9);
    for (int i = 0; i <= 64; ++i) {
      const Pose pose = motion.PoseAt(end_s * i / 64);
      EXPECT_NEAR(0.05, Distance(centre, pose.position), 1e-9);
      EXPECT_NEAR(centre.z, pose.position.z, 1e-9);
      const auto joints = Forward(ReferenceArm(), motion.At(end_s * i / 64).joints);
      EXPECT_LT(Distance(joints->position, pose.position), 1e-9);
      EXPECT_LT(AngleBetween(joints->orientation, pose.orientation), 1e-9);
    }
    // From rest to rest it is halfway after half the time, nearly.
    const Pose half = motion.PoseAt(end_s / 2);
    EXPECT_LT(Distance(through, half.position), 5e-3);
    EXPECT_NEAR(half_rad, AngleBetween(start.orientation, half.orientation), 0.1);
  }
}

// An L of two lines of 0.1 m: with a zone of 0.02 m the motion goes on through the corner within
// it; without one, and with one that has no room, it stops there. A zone of 1 m is cut to half of
// the shorter line.
TEST(Program, RoundsCornersWithinTheirZones) {
  const Pose corner = Moved(0.1, 0, 0);
  const auto ell = [&](const std::optional<Zone>& zone, double second_m) {
    LineLimits limits;
    limits.acceleration_m_s2 = 4;
    limits.jerk_m_s3 = 80;
    return Planned({LineStep{corner, limits, zone}, LineStep{Moved(0.1, second_m, 0), limits, {}}});
  };
  const ProgramMotion rounded = ell(Within(0.02), 0.1);
  ASSERT_EQ(1U, rounded.corners().size());
  const RoundedCorner& told = rounded.corners()[0];
  EXPECT_EQ(0U, told.step);
  EXPECT_NEAR(0.02, told.radius_m, 1e-6);
  double deviation = 0;
  double slowest = 1;
  for (int i = 0; i <= 200; ++i) {
    const double time_s = told.begin_s + (told.end_s - told.begin_s) * i / 200;
    const Vec3 p = rounded.PoseAt(time_s).position;
    EXPECT_LE(Distance(corner.position, p), 0.02 + 1e-7);
    deviation = std::max(deviation, std::min(std::fabs(p.y - corner.position.y),
                                             std::fabs(p.x - corner.position.x)));
    slowest = std::min(slowest, SpeedAt(rounded, time_s));
  }
  EXPECT_NEAR(deviation, told.deviation_m, 5e-5);
  EXPECT_GT(slowest, 0.05);
  EXPECT_LE(rounded.step_begins_s()[1], told.end_s);
  EXPECT_GE(rounded.step_begins_s()[1], told.begin_s);

  EXPECT_NEAR(0.02, ell(Within(1), 0.04).corners()[0].radius_m, 1e-4);
  for (const auto& stop : {std::optional<Zone>(), std::optional<Zone>(Within(0))}) {
    const ProgramMotion stopped = ell(stop, 0.1);
    EXPECT_TRUE(stopped.corners().empty());
    const MotionState there = stopped.At(stopped.step_begins_s()[1]);
    for (size_t j = 0; j < 6; ++j) EXPECT_NEAR(0, there.velocities[j], 1e-6);
    EXPECT_GT(stopped.duration_s(), rounded.duration_s() + 0.1);
  }
  // Zones of orientation and of joints, where the tool's would let more.
  Zone turn = Within(1);
  turn.turn_rad = 0.05;
  Pose turned = corner;
  turned.orientation = Quat{std::cos(0.2), 0, 0, std::sin(0.2)} * turned.orientation;
  const ProgramMotion by_turn =
      Planned({LineStep{turned, {}, turn}, LineStep{Moved(0.1, 0.1, 0), {}, {}}});
  EXPECT_NEAR(0.05, by_turn.corners()[0].turn_rad, 1e-6);
  Zone joint;
  joint.joint_rad = 0.03;
  Joints first = kStart;
  first[0] += 0.3;
  Joints second = first;
  second[2] -= 0.3;
  const ProgramMotion by_joint = Planned({JointStep{first, {}, joint}, JointStep{second, {}, {}}});
  EXPECT_NEAR(0.03, by_joint.corners()[0].joint_rad, 1e-6);
}

// 0.2 m at 50 mm/s in two lines with a bend of 45 degrees between them: the speed holds through
// the zone, and nothing is told to be slow. At 400 mm/s the bend is too sharp, which is told with
// the limit.
TEST(Program, KeepsTheToolSpeedWhereNoLimitBinds) {
  const auto bend = [](double speed_m_s) {
    LineLimits limits;
    limits.speed_m_s = speed_m_s;
    return Planned({LineStep{Moved(0, 0.1, 0), limits, Within(0.03)},
                    LineStep{Moved(0.07, 0.17, 0), limits, {}}});
  };
  const ProgramMotion slow = bend(0.05);
  EXPECT_TRUE(slow.slow_stretches().empty());
  const RoundedCorner& corner = slow.corners()[0];
  for (int i = 0; i <= 20; ++i) {
    const double time_s = corner.begin_s + (corner.end_s - corner.begin_s) * i / 20;
    EXPECT_NEAR(0.05, SpeedAt(slow, time_s), 2e-4);
  }
  const ProgramMotion fast = bend(0.4);
  const std::vector<SlowStretch> stretches = fast.slow_stretches();
  ASSERT_FALSE(stretches.empty());
  const SlowStretch& told = stretches[0];
  EXPECT_TRUE(told.limit == Limit::kToolAcceleration || told.limit == Limit::kToolJerk);
  EXPECT_NEAR(told.slowest_m_s, SpeedAt(fast, told.slowest_at_s), 2e-3);
  EXPECT_GE(told.slowest_at_s, told.begin_s);
  EXPECT_LE(told.slowest_at_s, told.end_s);
}

// A tool of 0.1 m: the pose that is gone to is the tool's. Waits take as long as they say, the
// motion a whole number of cycles. Steps of no length are none.
TEST(Program, WaitsAndChangesTools) {
  Transform tool;
  tool.position = {0, 0, 0.1};
  const Pose end = Moved(0.05, 0, 0);
  const ProgramMotion motion =
      Planned({WaitStep{0.1234}, LineStep{Moved(0, 0, 0.05), {}, Within(0.01)}, ToolStep{tool},
               JointStep{end, {}, {}}, LineStep{end, {}, {}}, WaitStep{0}});
  const std::vector<double>& begins = motion.step_begins_s();
  EXPECT_EQ(0, begins[0]);
  EXPECT_DOUBLE_EQ(0.1234, begins[1]);
  EXPECT_EQ(begins[2], begins[3]);
  EXPECT_LE(begins[4], motion.duration_s());
  EXPECT_EQ(kStart, motion.At(0.12).joints);
  const double cycles = motion.duration_s() / 0.005;
  EXPECT_NEAR(cycles, std::round(cycles), 1e-9);
  const double end_s = motion.duration_s();
  EXPECT_LT(Distance(end.position, motion.PoseAt(end_s).position), 1e-9);
  const auto flange = Forward(ReferenceArm(), motion.At(end_s).joints);
  EXPECT_NEAR(0.1, Distance(end.position, flange->position), 1e-9);
  EXPECT_EQ(Joints{}, motion.At(end_s).velocities);

  const ProgramMotion nothing = Planned({});
  EXPECT_EQ(0, nothing.duration_s());
  EXPECT_EQ(kStart, nothing.At(1).joints);
}

// What is wrong is told with its step, how far along it, and where the motion still gets.
TEST(Program, SaysWhichStepFailsAndWhere) {
  const LineStep fine = {Moved(0, 0.05, 0), {}, Within(0.01)};
  LineLimits none;
  none.speed_m_s = 0;
  Joints outside = kStart;
  outside[1] = 4;
  const Vec3 ahead = Moved(0, 0.1, 0).position;
  const struct {
    ProgramStep step;
    Reason reason;
  } cases[] = {
      {LineStep{Moved(3, 0, 0), {}, {}}, Reason::kOutOfReach},
      {LineStep{Moved(0.1, 0, 0), none, {}}, Reason::kSetting},
      {LineStep{Pose{ahead, {0, 0, 0, 0}}, {}, {}}, Reason::kNotAnOrientation},
      {LineStep{Pose{{NAN, 0, 0}, {1, 0, 0, 0}}, {}, {}}, Reason::kNotFinite},
      {JointStep{outside, {}, {}}, Reason::kJointRange},
      {JointStep{kStart, {2, 1, 1}, {}}, Reason::kSetting},
      {JointStep{Moved(3, 0, 0), {}, {}}, Reason::kOutOfReach},
      {ArcStep{ArcThrough{ahead, Moved(0, 0.2, 0)}, {}, {}}, Reason::kNoArc},
      {ArcStep{ArcAbout{ahead, {0, 0, 0}, 1}, {}, {}}, Reason::kNoArc},
      {ArcStep{ArcAbout{ahead, {0, 0, 1}, 1, ArcTurn::kToEnd}, {}, {}}, Reason::kNoArc},
      {ArcStep{ArcAbout{ahead, {0, 0, 1}, NAN}, {}, {}}, Reason::kNotFinite},
      {WaitStep{-1}, Reason::kSetting},
      {WaitStep{NAN}, Reason::kSetting},
  };
  for (const auto& [step, reason] : cases) {
    const auto motion = PlanProgram(ReferenceArm(), {kStart, {fine, step, fine}});
    ASSERT_FALSE(motion);
    EXPECT_EQ(reason, motion.error().failure.error.reason);
    EXPECT_EQ(1U, motion.error().step);
  }
  // It leaves the arm's reach at 0.15 to 0.4 m of 3 m, from where the step begins.
  const auto far = PlanProgram(ReferenceArm(), {kStart, {fine, cases[0].step}});
  const PlanFailure& failure = far.error().failure;
  EXPECT_GT(failure.along, 0.05);
  EXPECT_LT(failure.along, 0.3);
  const Vec3 from = Moved(0, 0.05, 0).position;
  const Vec3 to = Moved(3, 0, 0).position;
  EXPECT_NEAR(failure.along, Distance(from, failure.before.pose.position) / Distance(from, to),
              0.01);

  Joints start = kStart;
  start[0] = 4;
  const auto at_start = PlanProgram(ReferenceArm(), {start, {fine}});
  EXPECT_EQ(Reason::kJointRange, at_start.error().failure.error.reason);
}

Program Raster(size_t steps) {
  Program program = {kStart, {}};
  for (size_t i = 0; i < steps; ++i) {
    const double x = 0.01 * static_cast<double>((i + 1) / 2 % 8);
    program.steps.push_back(LineStep{Moved(x, i % 4 < 2 ? 0.04 : -0.04, 0), {}, Within(0.004)});
  }
  return program;
}

// The first samples of 60 lines are there when 17 are planned; all of them are those of the
// whole plan, to the bit. Where a window's motion goes over into the next one's it doesn't stop.
TEST(ProgramStream, HasTheSamplesOfTheWholePlanBeforeItIsPlanned) {
  const Program program = Raster(60);
  const auto motion = PlanProgram(ReferenceArm(), program);
  ASSERT_TRUE(motion);
  const Trajectory whole = *Sampled(ReferenceArm(), *motion);
  ProgramStream stream(ReferenceArm(), program);
  Trajectory streamed;
  for (;;) {
    const auto read = stream.Read(100);
    ASSERT_TRUE(read);
    if (streamed.empty()) {
      EXPECT_LE(stream.planned_steps(), 2 * kLookAheadSteps + 1);
    }
    if (read->empty()) break;
    streamed.insert(streamed.end(), read->begin(), read->end());
  }
  EXPECT_EQ(program.steps.size(), stream.planned_steps());
  ASSERT_EQ(whole.size(), streamed.size());
  EXPECT_EQ(0, std::memcmp(whole.data(), streamed.data(), whole.size() * sizeof(Sample)));
  EXPECT_EQ(59U, motion->corners().size());
  for (size_t i = 20; i + 20 < whole.size(); ++i) {
    const auto moves = [](double rate) { return std::fabs(rate) > 1e-4; };
    EXPECT_TRUE(std::any_of(whole[i].velocities.begin(), whole[i].velocities.end(), moves)) << i;
  }
}

// A step that can't be planned, late in a program: what was read before leads to rest.
TEST(ProgramStream, ComesToRestBeforeAFailure) {
  Program program = Raster(40);
  program.steps[35] = LineStep{Moved(3, 0, 0), {}, {}};
  ProgramStream stream(ReferenceArm(), program);
  Trajectory read;
  auto samples = stream.Read(50);
  for (; samples && !samples->empty(); samples = stream.Read(50)) {
    read.insert(read.end(), samples->begin(), samples->end());
  }
  ASSERT_FALSE(samples);
  EXPECT_EQ(35U, samples.error().step);
  ASSERT_GT(read.size(), 100U);
  EXPECT_EQ(Joints{}, read.back().velocities);
  EXPECT_EQ(Joints{}, read.back().accelerations);
}

}  // namespace
}  // namespace qal
