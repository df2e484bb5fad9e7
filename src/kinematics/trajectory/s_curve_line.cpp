#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "../../core/decimals.h"
#include "../pose/agreement.h"
#include "../pose/euler.h"
#include "../solve/inverse.h"
#include "joint_walk.h"
#include "line_walk.h"
#include "straight_line.h"

namespace qal {

namespace {

constexpr int kFinished = 1;
constexpr int kNoMove = -1;
constexpr int kNoProfile = -2;

// The shortest phase of a profile [s, ms]. In single precision, as the limits are.
constexpr float kShortestPhaseS = 0.02f;
constexpr double kShortestPhaseMs = 20.0;

// The exponent of the cube root, at double's own digits.
constexpr double kOneThird = 0.3333333333333333;

// Single precision throughout, in this order: the distance that four phases of 20 ms cover.
float ShortestProfile(float max_jerk) {
  return 2.0f * max_jerk * kShortestPhaseS * kShortestPhaseS * kShortestPhaseS;
}

// Twice a motor speed, as far as an int goes.
int Doubled(int rpm) {
  constexpr int kMost = std::numeric_limits<int>::max() / 2;
  return 2 * std::clamp(rpm, -kMost, kMost);
}

int TellJointStep(const Context& arm) {
  arm.Tell(Event::kJointStepRefused);
  return kNoMove;
}

// Samples jerk * t^3 / 6 every cycle until `phase_ms`, on the straight line and on the straight way
// between the Euler triples, and appends the points. Stops at one too far in joints from the one
// before, and returns false.
bool AppendFirstPhase(const Context& arm, const RoadPoint& start, const RoadPoint& end,
                      double length, double jerk, int phase_ms, int motor_speed_rpm,
                      std::vector<RoadPoint>& road) {
  const Pos dst = end.position - start.position;
  double start_euler[3];
  double euler_way[3];
  QuaternionToEuler(start.orientation, start_euler);
  EulerDifference(start.orientation, end.orientation, euler_way);
  RoadPoint point = start;
  const int last = static_cast<int>(phase_ms / arm.numbers.cycle_ms);
  for (int i = 1; i <= last; ++i) {
    const RoadPoint before = point;
    const double t = arm.numbers.cycle_ms * i / 1000.0;
    const double distance = jerk * std::pow(t, 3.0) / 6.0;
    const double k = distance / length;
    point.position = PointAtFraction(start.position, dst, k);
    double euler[3];
    for (int axis = 0; axis < 3; ++axis) euler[axis] = start_euler[axis] + euler_way[axis] * k;
    EulerToQuaternion(euler, point.orientation);
    // A point without a solution keeps the joints of the one before; the check is the guard.
    if (!SolveFrom(arm, before, point, kLineStepRad)) {
      arm.observer.Hear({Event::kPointHeld, &point, nullptr, i});
    }
    if (!CheckJointStep(arm, before, point, motor_speed_rpm)) return false;
    road.push_back(point);
  }
  return true;
}

}  // namespace

int PlanSCurveLine(const Context& arm, RoadPoint start, RoadPoint end, std::vector<RoadPoint>& road,
                   float max_acc, float max_jerk, int motor_speed_rpm) {
  // What is out of reach is replaced, in these copies, by what is close to its own joints.
  if (!MoveWithinReach(arm, start) || !MoveWithinReach(arm, end)) {
    arm.Tell(Event::kLineEndsUnsolved);
    return kNoMove;
  }
  const double length = LengthOf(end.position - start.position);

  const double shortest = static_cast<double>(ShortestProfile(max_jerk));
  if (shortest >= length) {
    arm.observer.Hear({Event::kShortLine, nullptr, nullptr, -1, -1, shortest, length});
    if (!CheckJointStep(arm, start, end, motor_speed_rpm)) return TellJointStep(arm);
    ReplaceByEndPoints(start, end, road);
    return kFinished;
  }

  // Time to build up the acceleration [ms]. The limits' quotient is a single-precision one.
  const double build_up_ms = static_cast<double>(max_acc / max_jerk) * 1000.0;
  if (kShortestPhaseMs >= build_up_ms) {
    arm.Tell(Event::kAccelerationTooLow);
    return kNoProfile;
  }
  // Two negative limits and NaN come as far as here; an infinite acceleration goes on, and limits
  // nothing.
  if (!(max_acc > 0.0f) || !(max_jerk > 0.0f) || std::isinf(max_jerk)) return kNoProfile;

  // The longest line without a phase of constant acceleration. The build-up time goes in in
  // milliseconds, so that with ordinary limits no line is longer.
  const double jerk = static_cast<double>(max_jerk);
  const float longest = static_cast<float>(2.0 * jerk * build_up_ms * build_up_ms * build_up_ms);
  if (length > static_cast<double>(longest)) return kFinished;

  // The phase time [ms] for which four phases, 2 * jerk * t^3, make up the line.
  const std::optional<int> phase_ms =
      TruncateToInt(std::pow(length * 0.5 / jerk, kOneThird) * 1000.0);
  if (!phase_ms) return kNoProfile;  // a length that is not a number, or a jerk next to nothing
  arm.Tell(Event::kFirstPhase);
  if (!AppendFirstPhase(arm, start, end, length, jerk, *phase_ms, Doubled(motor_speed_rpm), road)) {
    road.clear();
    return TellJointStep(arm);
  }
  return kFinished;
}

}  // namespace qal
