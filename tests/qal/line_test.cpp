#include <gtest/gtest.h>
#include <qal/model/rotations.h>
#include <qal/plan/sampled.h>
#include <qal/solve/kinematics.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "../../bench/seeded_lines.h"
#include "seeded.h"

namespace qal {
namespace {

using bench::Line;
using bench::LineKind;

// By how much a motion exceeds its limits, seen from outside: by differences of what it says of
// itself, at 32 times the cycle's rate.
struct Findings {
  double velocity = 0;  // multiples of the limits
  double acceleration = 0;
  double jerk = 0;
  double position_m = 0;  // off the line
  double orientation_rad = 0;
  double rates = 0;  // disagreement of joints and rates
};

Findings Examine(const Arm& arm, const Line& line, const LineMotion& motion) {
  Findings found;
  const double step_s = arm.cycle_s().value / 32;
  const auto count = static_cast<int64_t>(motion.duration_s() / step_s) + 1;
  const Pose start = motion.PoseAt(0);
  const double length = motion.length_m();
  const double angle = motion.angle_rad();
  const LineLimits& limits = line.limits;
  const auto worst = [](double& most, double value) { most = std::max(most, std::fabs(value)); };
  double s[4] = {0, 0, 0, 0};
  MotionState before = motion.At(0);
  for (int64_t i = 1; i <= count + 2; ++i) {
    const double time_s = static_cast<double>(i) * step_s;
    const MotionState state = motion.At(time_s);
    std::rotate(s, s + 1, s + 4);
    s[3] = motion.AlongAt(time_s);
    const double speed = (s[3] - s[2]) / step_s;
    const double acceleration = (s[3] - 2 * s[2] + s[1]) / (step_s * step_s);
    const double jerk = (s[3] - 3 * s[2] + 3 * s[1] - s[0]) / (step_s * step_s * step_s);
    worst(found.velocity, length * speed / limits.speed_m_s);
    worst(found.velocity, angle * speed / limits.turn_speed_rad_s);
    worst(found.acceleration, length * acceleration / limits.acceleration_m_s2);
    worst(found.acceleration, angle * acceleration / limits.turn_acceleration_rad_s2);
    // Three differences of s leave a rounding of 1e-16 / step^3.
    if (i >= 3) {
      const double rounding = 8e-16 / (step_s * step_s * step_s);
      const double sure = std::max(0.0, std::fabs(jerk) - rounding);
      worst(found.jerk, length * sure / limits.jerk_m_s3);
      worst(found.jerk, angle * sure / limits.turn_jerk_rad_s3);
    }
    for (size_t j = 0; j < 6; ++j) {
      const JointModel& joint = arm.joints()[j];
      worst(found.velocity,
            state.velocities[j] / (limits.scale.velocity * joint.velocity_rad_s.value));
      worst(found.acceleration,
            state.accelerations[j] / (limits.scale.acceleration * joint.acceleration_rad_s2.value));
      const double change = (state.accelerations[j] - before.accelerations[j]) / step_s;
      const double jerk_limit = limits.scale.jerk * joint.jerk_rad_s3.value;
      worst(found.jerk, change / jerk_limit);
      // The mean of both ends' speeds is that of the joints but for jerk * step^2 / 12.
      const double mean = (state.velocities[j] + before.velocities[j]) / 2;
      worst(found.rates, ((state.joints[j] - before.joints[j]) / step_s - mean) /
                             (jerk_limit * step_s * step_s / 12 + 1e-5));
    }
    before = state;
    if (i % 8 != 0) continue;
    const auto pose = Forward(arm, state.joints);
    const Vec3& p = start.position;
    const Vec3& e = line.to.position;
    const double along = s[3];
    const Vec3 there = {p.x + along * (e.x - p.x), p.y + along * (e.y - p.y),
                        p.z + along * (e.z - p.z)};
    worst(found.position_m, Distance(there, pose->position));
    worst(found.orientation_rad,
          AngleBetween(start.orientation, pose->orientation) - along * angle);
    worst(found.orientation_rad,
          AngleBetween(line.to.orientation, pose->orientation) - (1 - along) * angle);
  }
  return found;
}

TEST(PlanLine, KeepsEveryLimitBetweenSamplesAndTheLine) {
  const int lines = CountFromEnvironment("QAL_LINES", 84);
  std::map<Reason, int> outcomes;
  for (const Arm& arm : SeededArms()) {
    for (int i = 0; i < lines; ++i) {
      const unsigned seed = 20261125 + static_cast<unsigned>(i);
      SCOPED_TRACE(arm.name() + ", seed " + std::to_string(seed));
      const auto kind = static_cast<LineKind>(i % bench::kLineKinds);
      const Line line = bench::SeededLines(arm, seed).Next(kind);
      const auto motion = PlanLine(arm, line.from, line.to, line.limits);
      ++outcomes[motion ? Reason::kNone : motion.error().error.reason];
      if (!motion) continue;
      const Findings found = Examine(arm, line, *motion);
      EXPECT_LE(found.velocity, 1.001);
      EXPECT_LE(found.acceleration, 1.001);
      EXPECT_LE(found.jerk, 1.001);
      EXPECT_LE(found.position_m, 1e-9);
      EXPECT_LE(found.orientation_rad, 1e-9);
      EXPECT_LE(found.rates, 1.01);
      // Else the motion could be faster.
      EXPECT_GE(std::max({found.velocity, found.acceleration, found.jerk}), 0.9);
    }
  }
  EXPECT_GE(outcomes[Reason::kNone], 1.9 * lines);
  for (const Reason reason : {Reason::kOutOfReach, Reason::kJointRange, Reason::kSingularity}) {
    EXPECT_GE(outcomes[reason], 1);
  }
}

// A line that passes the wrist's singularity 0.1 degrees off joint 5's zero: exactly on it joint 4
// would leave its range. Within 0.1 degrees on each of two axes it goes straight through, as fast
// as the tool may.
TEST(PlanLine, PassesTheWristWithinAnOrientationError) {
  const Arm arm = Arm::Reference();
  const Joints middle = {0.3, -0.2, 0.4, 1.57, 0.1 * 3.14159265358979323846 / 180, 0.1};
  const Pose centre = *Forward(arm, middle);
  Line line;
  Pose start = centre;
  start.position = {centre.position.x - 0.05, centre.position.y, centre.position.z + 0.1};
  line.to = centre;
  line.to.position = {centre.position.x + 0.05, centre.position.y, centre.position.z - 0.1};
  line.from = *Nearest(arm, start, middle);
  const auto exact = PlanLine(arm, line.from, line.to, line.limits);
  ASSERT_FALSE(exact);
  EXPECT_EQ(exact.error().error.reason, Reason::kJointRange);
  EXPECT_EQ(exact.error().error.joint, 3);

  line.limits.max_orientation_error_rad = 1e-3;
  EXPECT_FALSE(PlanLine(arm, line.from, line.to, line.limits));
  line.limits.max_orientation_error_rad = 5e-3;
  const auto motion = PlanLine(arm, line.from, line.to, line.limits);
  ASSERT_TRUE(motion);
  const Findings found = Examine(arm, line, *motion);
  EXPECT_LE(std::max({found.velocity, found.acceleration, found.jerk}), 1.001);
  EXPECT_LE(found.position_m, 1e-9);
  EXPECT_NEAR(found.orientation_rad, motion->orientation_error_rad(), 1e-6);
  EXPECT_LE(found.orientation_rad, 2e-3);
  const double half = motion->duration_s() / 2;
  EXPECT_LE(AngleBetween(motion->PoseAt(half).orientation,
                         Forward(arm, motion->At(half).joints)->orientation),
            1e-9);
}

// The longest stretch without the line's orientation is often too long: the error grows with it.
TEST(PlanLine, UsesNoMoreOrientationErrorThanAllowed) {
  const Arm arm = Arm::Reference();
  int passed = 0;
  for (unsigned seed = 1; seed <= 100; ++seed) {
    SCOPED_TRACE(seed);
    Line line = bench::SeededLines(arm, seed).Next(bench::kPastWrist);
    line.limits.max_orientation_error_rad = 0.005;
    const auto motion = PlanLine(arm, line.from, line.to, line.limits);
    if (!motion) continue;
    passed += motion->orientation_error_rad() > 0 ? 1 : 0;
    EXPECT_LE(motion->orientation_error_rad(), 0.005);
    EXPECT_LE(Examine(arm, line, *motion).orientation_rad, 0.005 + 1e-6);
  }
  EXPECT_GE(passed, 10);
}

// What is refused, where, and with which numbers.
TEST(PlanLine, SaysWhyThereIsNone) {
  const Arm arm = Arm::Reference();
  const Joints joints = {0.3, -0.2, 0.4, 0.2, 1.2, 0.1};
  const State from = {joints, *Forward(arm, joints)};
  Pose away = from.pose;
  away.position.x += 1;
  const auto far = PlanLine(arm, from, away);
  ASSERT_FALSE(far);
  EXPECT_EQ(far.error().error.reason, Reason::kOutOfReach);
  // There, and 1e-4 farther on, the solver agrees.
  const double along = far.error().along;
  const auto at = [&](double s) {
    Pose pose = from.pose;
    pose.position.x += s;
    return Nearest(arm, pose, far.error().before.joints).has_value();
  };
  EXPECT_TRUE(at(along - 1e-6));
  EXPECT_FALSE(at(along + 1e-4));

  const State straight = {{0.3, -0.2, 0.4, 0.2, 0, 0.1}, {}};
  const auto singular = PlanLine(arm, straight, from.pose);
  ASSERT_FALSE(singular);
  EXPECT_EQ(singular.error().error.reason, Reason::kSingularity);
  EXPECT_EQ(singular.error().error.detail, "wrist");

  LineLimits limits;
  limits.jerk_m_s3 = 0;
  EXPECT_EQ(PlanLine(arm, from, away, limits).error().error.detail, "jerk_m_s3");
  limits = {};
  limits.scale.velocity = 1.5;
  EXPECT_EQ(PlanLine(arm, from, away, limits).error().error.bound, 1);
  away.orientation = {0, 0, 0, 0};
  EXPECT_EQ(PlanLine(arm, from, away).error().error.reason, Reason::kNotAnOrientation);

  const auto nothing = PlanLine(arm, from, from.pose);
  ASSERT_TRUE(nothing);
  EXPECT_EQ(nothing->duration_s(), 0);
  EXPECT_EQ(Sampled(arm, *nothing)->size(), 1U);
}

// 1.002 s at 0.05 m/s, and twice 0.0707 s to reach it: 1.1434 s, 229 cycles.
TEST(PlanLine, IsSampledFromRestToRestInWholeCycles) {
  const Arm arm = Arm::Reference();
  const Joints joints = {0.3, -0.2, 0.4, 0.2, 1.2, 0.1};
  const State from = {joints, *Forward(arm, joints)};
  Pose to = from.pose;
  to.position.z -= 0.0501;
  LineLimits limits;
  limits.speed_m_s = 0.05;
  const auto motion = PlanLine(arm, from, to, limits);
  ASSERT_TRUE(motion);
  // The speed is reached in 2 sqrt(0.05 / 10) s.
  EXPECT_NEAR(motion->duration_s(), 0.0501 / 0.05 + 2 * std::sqrt(0.05 / 10), 1e-9);
  const Trajectory trajectory = *Sampled(arm, *motion);
  ASSERT_EQ(trajectory.size(), 1U + 229U);
  EXPECT_EQ(trajectory.front().joints, joints);
  EXPECT_EQ(trajectory.back().time_s, 229 * 0.005);
  EXPECT_EQ(trajectory.back().pose.position.z, to.position.z);
  // Slower throughout, not stopped early: the way there is the way back.
  EXPECT_NEAR(trajectory[100].pose.position.z + trajectory[129].pose.position.z,
              from.pose.position.z + to.position.z, 1e-12);
  for (const Sample& end : {trajectory.front(), trajectory.back()}) {
    EXPECT_EQ(end.velocities, Joints{});
    EXPECT_EQ(end.accelerations, Joints{});
  }
  const auto bindings = motion->bindings();
  ASSERT_FALSE(bindings.empty());
  EXPECT_EQ(bindings.front().limit, Limit::kToolSpeed);
}

}  // namespace
}  // namespace qal
