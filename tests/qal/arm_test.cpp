#include <functional>
#include <limits>

#include "../../src/qal/model/frames.h"
#include "arms.h"

namespace qal {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A number, with a star where it is assumed.
std::string Text(const Setting& setting) {
  std::ostringstream text;
  text << setting.value << (setting.described ? "" : "*");
  return text.str();
}

std::string Text(const JointModel& joint) {
  std::string text = joint.name;
  for (const Setting& setting : {joint.lower_rad, joint.upper_rad, joint.velocity_rad_s,
                                 joint.acceleration_rad_s2, joint.jerk_rad_s3, joint.gear_ratio}) {
    text += ' ' + Text(setting);
  }
  return text;
}

// What is said of joint 3, and what it comes to: lower, upper, velocity, acceleration, jerk, gear
// ratio. One degree of 170 is 0.0174533; pi rad/s is 30 rpm, a hundredth of 3000.
TEST(Arm, TakesSettingsBeforeTheDescriptionBeforeWhatIsAssumed) {
  const struct {
    std::function<void(JointDescription&, JointSettings&)> say;
    const char* expected;
  } cases[] = {
      {[](auto&, auto&) {}, "joint_3 -2.96706* 2.96706* 3.14159* 12.5664* 251.327* 100*"},
      {[](auto& d, auto&) {
         d.name = "elbow";
         d.lower_rad = -1;
         d.upper_rad = 6;
         d.velocity_rad_s = 2 * kPi;
       },
       "elbow -1 6 6.28319 25.1327* 502.655* 50*"},
      {[](auto& d, auto& s) {
         d.lower_rad = -1;
         d.velocity_rad_s = 2 * kPi;
         s.lower_rad = -2;
         s.velocity_rad_s = 4;
         s.acceleration_rad_s2 = 20;
         s.jerk_rad_s3 = 300;
         s.gear_ratio = 60;
       },
       "joint_3 -2 2.96706* 4 20 300 60"},
      // The motor, with its gear ratio: before the description.
      {[](auto& d, auto& s) {
         d.velocity_rad_s = 1;
         s.gear_ratio = 50;
         s.motor_speed_rpm = 1500;
         s.motor_acceleration_rpm_s = 6000;
       },
       "joint_3 -2.96706* 2.96706* 3.14159 12.5664 251.327* 50"},
      // The ratio is what takes the motor's speed to the described velocity; it is known then.
      {[](auto& d, auto& s) {
         d.velocity_rad_s = kPi;
         s.motor_speed_rpm = 1500;
         s.motor_acceleration_rpm_s = 6000;
       },
       "joint_3 -2.96706* 2.96706* 3.14159 12.5664 251.327* 50"},
      {[](auto&, auto& s) { s.motor_acceleration_rpm_s = 6000; },
       "joint_3 -2.96706* 2.96706* 3.14159* 6.28319* 125.664* 100*"},
      {[](auto& d, auto&) { d.continuous = true; },
       "joint_3 -inf inf 3.14159* 12.5664* 251.327* 100*"},
      {[](auto& d, auto& s) {
         d.continuous = true;
         s.upper_rad = 7;
       },
       "joint_3 -inf 7 3.14159* 12.5664* 251.327* 100*"},
  };
  for (const auto& [say, expected] : cases) {
    ArmDescription description = Describe("reference.urdf");
    description.joints[2].name = "";
    description.joints[2].lower_rad = description.joints[2].upper_rad = std::nullopt;
    description.joints[2].velocity_rad_s = std::nullopt;
    ArmSettings settings;
    say(description.joints[2], settings.joints[2]);
    const Arm arm = Arm::FromDescription(description, settings).value();
    EXPECT_EQ(Text(arm.joints()[2]), expected);
    EXPECT_EQ(Text(arm.cycle_s()) + arm.name(), "0.005*reference");
  }
}

TEST(Arm, RefusesLimitsThatAreNone) {
  const struct {
    std::function<void(ArmSettings&, JointSettings&)> say;
    Error expected;
  } cases[] = {
      {[](auto&, auto& j) { j.lower_rad = std::nan(""); },
       {Reason::kLimits, 3, NAN, 0, "lower_rad"}},
      {[](auto&, auto& j) { j.upper_rad = kInfinity; },
       {Reason::kLimits, 3, kInfinity, 0, "upper_rad"}},
      {[](auto&, auto& j) {
         j.lower_rad = 1;
         j.upper_rad = 0.5;
       },
       {Reason::kLimits, 3, 1, 0.5, "lower_rad"}},
      {[](auto&, auto& j) { j.velocity_rad_s = 0; }, {Reason::kLimits, 3, 0, 0, "velocity_rad_s"}},
      {[](auto&, auto& j) { j.gear_ratio = -3; }, {Reason::kLimits, 3, -3, 0, "gear_ratio"}},
      {[](auto&, auto& j) { j.jerk_rad_s3 = NAN; }, {Reason::kLimits, 3, NAN, 0, "jerk_rad_s3"}},
      {[](auto&, auto& j) { j.motor_speed_rpm = kInfinity; },
       {Reason::kLimits, 3, kInfinity, 0, "motor_speed_rpm"}},
      {[](auto& s, auto&) { s.cycle_s = 0; }, {Reason::kLimits, -1, 0, 0, "cycle_s"}},
      {[](auto& s, auto&) { s.base.rotation[1] = 0.1; }, {Reason::kSetting, -1, 0, 0, "base"}},
      {[](auto& s, auto&) { s.tool.position.z = NAN; }, {Reason::kSetting, -1, 0, 0, "tool"}},
  };
  for (const auto& [say, expected] : cases) {
    ArmSettings settings;
    say(settings, settings.joints[3]);
    const Result<Arm> arm = Arm::FromSolver(Solver::Reference(), settings);
    EXPECT_EQ(arm ? "an arm" : Text(arm.error()), Text(expected));
  }
}

// Asked before each answer, by the arm and by those made of it with another tool; what has been
// answered before is the arm's own.
TEST(Arm, EndsItsWorkWhenItsWatchSaysSo) {
  const Arm plain = Arm::Reference();
  const Joints joints = {0.1, 0.3, 0.2, 0.1, 1, 0.2};
  int left = 2;
  const Arm watched = plain.Watched([&left] { return left-- > 0; });
  EXPECT_EQ(Forward(plain, joints)->position.x, Forward(watched, joints)->position.x);
  const Pose pose = *Forward(plain, joints);
  const auto nearest = Nearest(watched, pose, joints);
  ASSERT_TRUE(nearest);
  EXPECT_EQ(Nearest(plain, pose, joints)->joints, nearest->joints);
  EXPECT_EQ(Reason::kInterrupted, Forward(watched, joints).error().reason);
  EXPECT_EQ(Reason::kInterrupted, Inverse(watched, pose, joints).error().reason);
  Transform tool;
  tool.position.z = 0.1;
  EXPECT_EQ(Reason::kInterrupted, Forward(*watched.WithTool(tool), joints).error().reason);
  EXPECT_EQ(2 - 5, left);  // asked once a call
}

}  // namespace
}  // namespace qal
