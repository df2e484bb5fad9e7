#ifndef QAL_PLAN_CLASSIC_H_
#define QAL_PLAN_CLASSIC_H_

/// @file
/// Ikfunc's lines, joint moves and jogs over any arm.

#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "../model/arm.h"

/// The classic operations of `Ikfunc` over any arm, answered by value: the same points to the bit
/// where the arm is the reference arm and the start's pose is `Ikfunc::ArmFk`'s.
///
/// What stays as it is there: every joint has to stand within 2.967059678 rad, whatever the arm's
/// limits; the lines' steps are per cycle, however long the arm's cycle is; the generators keep no
/// limit of speed but those that are named. What differs: the start is always the first point; the
/// end is checked like any other point; a point whose joints don't reach its pose is a failure.
namespace qal::classic {

/// Hears the operation's own messages, as `Ikfunc` would print them: whole lines, or blocks of
/// them.
using Listener = std::function<void(std::string_view)>;

/// The detail of a kJointRange whose bound is not the arm's, but the classic operations'.
constexpr const char* kClassicRangeDetail = "classic";

/// Where and why a move has no plan.
struct Failure {
  Error error;                       ///< the reason with its numbers
  std::optional<size_t> point = {};  ///< which point of the plan it is, from 0
  std::optional<Pose> at = {};       ///< its pose
};

/// The points of a move, one cycle of the arm apart, from the start to the end.
using Plan = Result<std::vector<State>, Failure>;

/// The ends of a move. Without joints, the end has those that the line arrives with.
struct Ends {
  State start;                            ///< joints [rad] and the pose that they have [base frame]
  Pose end;                               ///< [base frame]
  std::optional<Joints> end_joints = {};  ///< [rad]
};

/// A straight line in steps of speed * 0.00004 m; see `Ikfunc::CountLineSize` and its companion.
/// @param arm      the arm
/// @param ends     at most 1 m apart on each axis, with the same orientation to 0.0001
/// @param speed    at least 1
/// @param listener hears messages; may be empty
/// @return the points; kEndsApart, kEndsTurned, kOutOfReach, kJointRange, kStepBound,
///         kConfiguration, kSolverFault, kSolverThrows
QAL_API Plan FixedLine(const Arm& arm, const Ends& ends, int speed, const Listener& listener = {});

/// A straight line in steps of precision * 0.0002 m.
/// @param arm       the arm
/// @param ends      as for `FixedLine`
/// @param precision above 0
/// @param listener  hears messages; may be empty
/// @return as above; kTooManyPoints for more than a million
QAL_API Plan FineLine(const Arm& arm, const Ends& ends, double precision,
                      const Listener& listener = {});

/// A straight line whose step ramps up to speed * 0.00002 m, cruises, and ramps down.
/// @param arm      the arm
/// @param ends     as for `FixedLine`
/// @param speed    at least 1
/// @param listener hears messages; may be empty
/// @return as above; kTooShort for a line that has no room for its ramps
QAL_API Plan RampedLine(const Arm& arm, const Ends& ends, int speed, const Listener& listener = {});

/// What an S-curve line is planned by.
struct SCurveLimits {
  float acceleration_m_s2;  ///< of the tool centre point, above 0; selects the case
  float jerk_m_s3;          ///< of the tool centre point, above 0 and finite
  int motor_speed_rpm;  ///< no joint's motor may be quicker; doubled between points of the first
                        ///< phase
};

/// The first phase of a jerk-limited line, or both ends of a very short one.
/// @return as above; kAccelerationTooLow; kMotorSpeed; kSetting ("acceleration") where the
///         acceleration is reached before the line's end, for which there is no profile
QAL_API Plan SCurveLine(const Arm& arm, const Ends& ends, const SCurveLimits& limits,
                        const Listener& listener = {});

/// A joint move in equal steps of speed * 0.01 degrees of the leading joint.
/// @param arm      the arm
/// @param start    joints [rad] and their pose
/// @param end      likewise
/// @param speed    at least 1
/// @param listener hears messages; may be empty
QAL_API Plan FixedMove(const Arm& arm, const State& start, const State& end, int speed,
                       const Listener& listener = {});

/// A joint move whose leading joint's step ramps up by 0.01 degrees a cycle.
/// @param arm      the arm
/// @param start    joints [rad] and their pose
/// @param end      likewise
/// @param speed    twice the top speed in units of 0.01 degrees per cycle, at least 2
/// @param listener hears messages; may be empty
QAL_API Plan RampedMove(const Arm& arm, const State& start, const State& end, int speed,
                        const Listener& listener = {});

/// A joint move in trapezoids that all take the cycles of the slowest joint.
/// @param arm       the arm
/// @param start     joints [rad] and their pose
/// @param end       likewise
/// @param percent   of each motor's full speed, at least 1
/// @param motor_acc acceleration limit [rpm/s] at the motors, at least 1
/// @param listener  hears messages; may be empty
/// @return the points; kTooManyPoints for more than 46340 cycles
QAL_API Plan TrapezoidMove(const Arm& arm, const State& start, const State& end, int percent,
                           int motor_acc, const Listener& listener = {});

/// The frame of a jog.
enum class Frame {
  kBase,  ///< the arm's base frame
  kTool   ///< the tool's, as it stands before the step
};
/// The axis of a jog.
enum class Axis {
  kX,  ///< x
  kY,  ///< y
  kZ   ///< z
};

/// What a jog does.
struct JogStep {
  Frame frame;  ///< whose axis it is
  Axis axis;    ///< which one
  bool turns;   ///< about the axis, otherwise along it
  double step;  ///< signed [m or rad]
};

/// One jog step. No joint may move further than 1000 rad per metre or radian of the step. Where
/// `Ikfunc`'s jog leaves turns about the base's axes out, this turns about them, through the tool
/// centre point.
/// @return kOutOfReach, kJointRange, kStepBound, kSolverFault, kSolverThrows
QAL_API Result<State, Failure> Jog(const Arm& arm, const State& from, const JogStep& step,
                                   const Listener& listener = {});

}  // namespace qal::classic

#endif  // QAL_PLAN_CLASSIC_H_
