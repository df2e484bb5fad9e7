#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "../../core/decimals.h"
#include "../arm_constants.h"
#include "../diagnostics.h"
#include "../ikfunc.h"
#include "joint_step_check.h"
#include "joint_walk.h"
#include "line_walk.h"

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

bool IsLimit(float value) { return value > 0.0f && std::isfinite(value); }

// Twice a motor speed, as far as an int goes.
int Doubled(int rpm) {
  constexpr int kMost = std::numeric_limits<int>::max() / 2;
  return 2 * std::clamp(rpm, -kMost, kMost);
}

int ReportJointStep() {
  qal::WriteError(qal::kJointStepError);
  return kNoMove;
}

// Samples jerk * t^3 / 6 every cycle until `phase_ms`, on the straight line and on the straight way
// between the Euler triples, and appends the points. Stops at one too far in joints from the one
// before, and returns false.
bool AppendFirstPhase(const RoadPoint& s_point, const RoadPoint& e_point, double length,
                      double jerk, int phase_ms, int motor_speed_rpm,
                      std::vector<RoadPoint>& road) {
  const Pos dst = e_point.position - s_point.position;
  double s_point_euler[3];
  double dip_euler[3];
  Ikfunc::QuaternionToEulerAngle(s_point.orientation, s_point_euler);
  Ikfunc::QuaternionToEulerDis(s_point, e_point, dip_euler);
  RoadPoint tempPoint = s_point;
  for (int i = 1; i <= phase_ms / qal::kCycleMs; ++i) {
    RoadPoint oldPoint = tempPoint;
    const double t = qal::kCycleMs * i / 1000.0;
    const double temp_s = jerk * std::pow(t, 3.0) / 6.0;
    const double k = temp_s / length;
    tempPoint.position = qal::PointAtFraction(s_point.position, dst, k);
    double temp_euler[3];
    for (int axis = 0; axis < 3; ++axis) {
      temp_euler[axis] = s_point_euler[axis] + dip_euler[axis] * k;
    }
    Ikfunc::EulerAngleToQuaternion(tempPoint.orientation, temp_euler);
    // An unsolved point keeps the joints of the one before; the check is the guard.
    (void)Ikfunc::ArmJointIk(oldPoint, tempPoint, qal::kLineStepRad);
    if (!qal::CheckJointStep(oldPoint, tempPoint, motor_speed_rpm)) return false;
    road.push_back(tempPoint);
  }
  return true;
}

}  // namespace

int Ikfunc::CountSRunCurvelLineToBuffer(RoadPoint s_point, RoadPoint e_point,
                                        std::vector<RoadPoint>* point_road, float /*max_v*/,
                                        float max_acc, float max_jerk, int max_joint) {
  // What is out of reach is replaced, in these copies, by what is close to its own joints.
  if (!ArmCheckAndCountSimilarIk(s_point) || !ArmCheckAndCountSimilarIk(e_point)) {
    qal::WriteError(qal::kLineEndsError);
    return kNoMove;
  }
  const Pos dst = e_point.position - s_point.position;
  const double length = NORM(dst.x, dst.y, dst.z, 0);

  const double Smin = static_cast<double>(ShortestProfile(max_jerk));
  if (Smin >= length) {
    qal::WriteLine(qal::kShortestProfileLine, Smin);
    qal::WriteLine(qal::kLineLengthLine, length);
    if (!qal::CheckJointStep(s_point, e_point, max_joint)) return ReportJointStep();
    qal::ReplaceByEndPoints(s_point, e_point, *point_road);
    return kFinished;
  }

  // Time to build up the acceleration [ms]. The limits' quotient is a single-precision one.
  const double Ttemp = static_cast<double>(max_acc / max_jerk) * 1000.0;
  if (kShortestPhaseMs >= Ttemp) {
    qal::WriteError(qal::kSmallAccelerationError);
    return kNoProfile;
  }
  // Two negative limits, infinities and NaN come as far as here.
  if (!IsLimit(max_acc) || !IsLimit(max_jerk)) return kNoProfile;

  // The longest line without a phase of constant acceleration. The build-up time goes in in
  // milliseconds, so that with ordinary limits no line is longer.
  const double jerk = static_cast<double>(max_jerk);
  const float Smax = static_cast<float>(2.0 * jerk * Ttemp * Ttemp * Ttemp);
  if (length > static_cast<double>(Smax)) return kFinished;

  // The phase time [ms] for which four phases, 2 * jerk * t^3, make up the line.
  const std::optional<int> phase_ms =
      qal::TruncateToInt(std::pow(length * 0.5 / jerk, kOneThird) * 1000.0);
  if (!phase_ms) return kNoProfile;  // a length that is not a number, or a jerk next to nothing
  qal::WriteError(qal::kFirstPhaseNotice);
  if (!AppendFirstPhase(s_point, e_point, length, jerk, *phase_ms, Doubled(max_joint),
                        *point_road)) {
    point_road->clear();
    return ReportJointStep();
  }
  return kFinished;
}
