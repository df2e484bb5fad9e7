#include "../../io/error_text.h"

#include <gtest/gtest.h>

#include <limits>

#include "../../io/plan_text.h"

namespace qal::io {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// clang-format off
// One row a reason, and where its words depend on more, a row for each case. Those that the tools'
// tests meet, such as kOutOfReach, are not repeated.
TEST(ErrorText, SaysEachReasonWithItsNumbers) {
  const struct {
    Error error;
    std::string text;
  } rows[] = {
      {{}, "no reason is given"},
      {{Reason::kNotFinite, 3, kNan}, "joint 4: nan is no finite number"},
      {{Reason::kNotFinite, -1, -1.0 / 0.0}, "-inf is no finite number"},
      {{Reason::kNotAnOrientation, -1, 1e-9}, "the quaternion has the length 1e-09; qw qx qy qz of length 1 are expected"},
      {{Reason::kSetting, -1, -0.1, 0, "step_bound_rad"}, "the step bound is -0.1 rad; the nearest that works is 0 rad"},
      {{Reason::kSetting, -1, 0, 1, "speed"}, "the speed is 0; the nearest that works is 1"},
      {{Reason::kSetting, -1, 0, 0, "tool"}, "the tool frame is none: its axes have length 1 and right angles, its position is finite"},
      {{Reason::kNoPose}, "the solver's forward kinematics gives no pose; ikcheck tells more about the solver"},
      {{Reason::kJointRange, 0, 3.0, 2.967059678, "classic"}, "joint 1 at 3 rad, 0.0329403 rad outside its limit of 2.96706 rad, which this operation has for any arm"},
      {{Reason::kSolverFault, -1, 0, 0, "no pose"}, "the solver breaks its contract (no pose); ikcheck tells more about it"},
      {{Reason::kFunctionMissing, -1, 0, 0, "ikfast::ComputeIk"}, "no solver library: it has no function ikfast::ComputeIk"},
      {{Reason::kNotSixJoints, -1, 7, 6}, "the solver has 7 joints, 6 are expected"},
      {{Reason::kFreeParameters, -1, 1, 0}, "the solver has free parameters (1), none is expected"},
      {{Reason::kSolverType, -1, 0x56000007, 0x67000001}, "the solver is of type 0x56000007; one for full poses, 0x67000001, is expected"},
      {{Reason::kSingularEverywhere}, "the arm is singular everywhere; mkik says what its axes are like"},
      {{Reason::kNoFamily}, "the arm is near no family, and has no nearest member"},
      {{Reason::kLimits, 1, 3, 2, "lower_rad"}, "joint 2: the lower limit, 3 rad, lies above the upper one, 2 rad"},
      {{Reason::kLimits, 1, kNan, 0, "upper_rad"}, "joint 2: the upper limit is nan rad; a finite number is expected"},
      {{Reason::kLimits, 0, -1, 0, "velocity_rad_s"}, "joint 1: the velocity is -1 rad/s; a finite number above 0 is expected"},
      {{Reason::kLimits, -1, 0, 0, "cycle_s"}, "the cycle is 0 s; a finite number above 0 is expected"},
      {{Reason::kEndsTurned, -1, 0.5, 1e-4}, "the tool would have to turn: a quaternion component differs by 0.5 from start to end; a straight line keeps each within 0.0001"},
      {{Reason::kTooShort, -1, 0.01, 0.0328}, "the line is too short for its ramps: 0.01 m, and the shortest that works is 0.0328 m; lower the speed"},
      {{Reason::kConfiguration, 4, 2, 0.518}, "the line arrives with other joints than the end's: joint 5 would jump 2 rad to the last point, at most 0.518 rad are one step"},
      {{Reason::kMotorSpeed, 0, 10681.7, 3000}, "joint 1 would need its motor at 10682 rpm; 3000 rpm are the limit"},
      {{Reason::kAccelerationTooLow, -1, 0.5, 0.8}, "the acceleration, 0.5 m/s^2, is built up within 20 ms; it has to be above 0.8 m/s^2"},
      {{Reason::kEndRate, 1, 1.5, 0.86, "start_velocity_rad_s"}, "joint 2: the start velocity is 1.5 rad/s; 0.86 rad/s are allowed"},
      {{Reason::kSingularity, -1, 1e-9, 0, "wrist"}, "the path leads through a wrist singularity, where joints would have to turn at once"},
      {{Reason::kTooManyPoints, -1, 5e7, 1e6}, "50000000 points, at most 1000000 are planned"},
  };
  for (const auto& [error, text] : rows) EXPECT_EQ(ErrorText(error), text);
}
// clang-format on

// A third of 1 m and of 180 degrees: nine digits of a length, six of an angle.
TEST(ErrorText, SpeaksInTheCallersUnits) {
  const TextUnits units = {true, true};
  const double third_turn = 3.14159265358979323846 / 3;
  EXPECT_EQ(ErrorText({Reason::kStepBound, 0, 2 * third_turn, third_turn}, units),
            "joint 1 moves 120 deg, 60 deg over the step bound of 60 deg");
  EXPECT_EQ(ErrorText({Reason::kEndsApart, -1, 4.0 / 3, 1}, units),
            "the end is 1333.33333 mm away on an axis; a line may be 1000 mm long on each");
  EXPECT_EQ(ErrorText({Reason::kLimits, 0, -third_turn, 0, "jerk_rad_s3"}, units),
            "joint 1: the jerk is -60 deg/s^3; a finite number above 0 is expected");
}

// A failure on the way has its place; one of the request has none.
TEST(PlanFailureText, SaysWhereWhyAndWhatToDo) {
  const State before = {{0, 0.5, 0, 0, 1, 0}, {{0.4, 0, 0.5}, {1, 0, 0, 0}}};
  EXPECT_EQ(
      PlanFailureText({{Reason::kJointRange, 3, 3.0, 2.9}, 0.4321, before}, "line"),
      "43.21 % along the line: joint 4 at 3 rad, 0.1 rad outside its limit of 2.9 rad; before "
      "it joints 0 0.5 0 0 1 0 rad, position 0.4 0 0.5 m; begin in another configuration, or "
      "end elsewhere");
  EXPECT_EQ(PlanFailureText({{Reason::kSetting, -1, 0, 1, "speed"}, 0, before}, "line"),
            "the speed is 0; the nearest that works is 1");
}

}  // namespace
}  // namespace qal::io
