#include "path_motion.h"

#include <algorithm>
#include <cmath>

#include "joint_limits.h"

namespace qal {

PathMoment MomentAt(const LimitedPath& path, const TimeLaw& law, double time_s) {
  PathMoment moment = law.At(time_s);
  moment.s = std::clamp(moment.s, path.begin(), path.end());
  return moment;
}

MotionState StateAt(const LimitedPath& path, const PathMoment& moment) {
  const PathPoint q = path.joints.At(moment.s);
  const JointRates rates = RatesOf(q, moment);
  return {q.value, rates[0], rates[1]};
}

void SetJointLimits(const Arm& arm, const LimitScale& scale, PathSection& section) {
  for (size_t j = 0; j < 6; ++j) {
    const AxisLimits joint = ScaledLimits(arm.joints()[j], scale);
    section.joint_velocity[j] = joint.velocity;
    section.joint_acceleration[j] = joint.acceleration;
    section.joint_jerk[j] = joint.jerk;
  }
}

ToolLimits ToolLimitsOf(const LineLimits& limits) {
  return {limits.speed_m_s,        limits.acceleration_m_s2,        limits.jerk_m_s3,
          limits.turn_speed_rad_s, limits.turn_acceleration_rad_s2, limits.turn_jerk_rad_s3};
}

void SetStraight(double length_m, double angle_rad, PathSection& section) {
  const double span = section.tool->span();
  const ToolLimits& tool = section.tool_limits;
  const auto of_s = [&](double of_tool, double of_turn) {
    return span * std::min(of_tool / length_m, of_turn / angle_rad);
  };
  section.straight = true;
  section.speed = of_s(tool.speed, tool.turn_speed);
  section.acceleration = of_s(tool.acceleration, tool.turn_acceleration);
  section.jerk = of_s(tool.jerk, tool.turn_jerk);
}

std::optional<Error> RefusedLimits(const LineLimits& limits) {
  const std::pair<const char*, double> positive[] = {
      {"speed_m_s", limits.speed_m_s},
      {"acceleration_m_s2", limits.acceleration_m_s2},
      {"jerk_m_s3", limits.jerk_m_s3},
      {"turn_speed_rad_s", limits.turn_speed_rad_s},
      {"turn_acceleration_rad_s2", limits.turn_acceleration_rad_s2},
      {"turn_jerk_rad_s3", limits.turn_jerk_rad_s3}};
  for (const auto& [name, value] : positive) {
    if (!(value > 0 && std::isfinite(value))) return Error{Reason::kSetting, -1, value, 0, name};
  }
  if (auto refused = RefusedScale(limits.scale)) return refused;
  constexpr double kMostErrorRad = 0.5;
  const double error = limits.max_orientation_error_rad;
  if (error >= 0 && error <= kMostErrorRad) return std::nullopt;
  return Error{Reason::kSetting, -1, error, error > 0 ? kMostErrorRad : 0.0,
               "max_orientation_error_rad"};
}

std::array<NeededLimit, 24> NeedsAt(const PathPoint& joints, const PathMoment& moment,
                                    const PathSection& section) {
  std::array<NeededLimit, 24> needs;
  auto* next = needs.begin();
  constexpr Limit kOfJoint[] = {Limit::kJointVelocity, Limit::kJointAcceleration,
                                Limit::kJointJerk};
  const JointRates rates = RatesOf(joints, moment);
  const Joints* limits[] = {&section.joint_velocity, &section.joint_acceleration,
                            &section.joint_jerk};
  for (size_t j = 0; j < 6; ++j) {
    for (size_t order = 0; order < 3; ++order) {
      *next++ = {kOfJoint[order], static_cast<int>(j),
                 std::fabs(rates[order][j]) / (*limits[order])[j]};
    }
  }
  Load tool;
  Load turn;
  if (section.tool != nullptr) {
    const ToolRates at = section.ToolAt(joints.s);
    tool = ToolLoad(at, moment, section.tool_limits);
    turn = TurnLoad(at, moment, section.tool_limits);
  }
  *next++ = {Limit::kToolSpeed, -1, tool.velocity};
  *next++ = {Limit::kToolAcceleration, -1, tool.acceleration};
  *next++ = {Limit::kToolJerk, -1, tool.jerk};
  *next++ = {Limit::kTurnSpeed, -1, turn.velocity};
  *next++ = {Limit::kTurnAcceleration, -1, turn.acceleration};
  *next++ = {Limit::kTurnJerk, -1, turn.jerk};
  return needs;
}

void BindingMeter::Look(const PathPoint& joints, const PathMoment& moment,
                        const PathSection& section, double begin_s, double end_s) {
  // A plan leaves some thousandths of a limit here and there.
  constexpr double kReached = 0.985;
  const auto needs = NeedsAt(joints, moment, section);
  for (size_t i = 0; i < needs.size(); ++i) {
    if (needs[i].part >= kReached) stretches_[i / 3][i % 3].Add(begin_s, end_s);
  }
}

std::vector<Binding> BindingMeter::Told(double duration_s) const {
  constexpr Limit kKinds[3][3] = {
      {Limit::kToolSpeed, Limit::kToolAcceleration, Limit::kToolJerk},
      {Limit::kTurnSpeed, Limit::kTurnAcceleration, Limit::kTurnJerk},
      {Limit::kJointVelocity, Limit::kJointAcceleration, Limit::kJointJerk}};
  std::vector<Binding> bindings;
  for (size_t order = 0; order < 3; ++order) {
    for (size_t whose = 0; whose < 8; ++whose) {
      const Limit limit = kKinds[whose < 6 ? 2 : whose - 6][order];
      const int joint = whose < 6 ? static_cast<int>(whose) : -1;
      stretches_[whose][order].AppendTo(bindings, limit, joint, duration_s);
    }
  }
  SortByShare(bindings);
  return bindings;
}

void LookThrough(const LimitedPath& path, const TimeLaw& law, double begin_s, double cycle_s,
                 BindingMeter& meter) {
  constexpr double kMostLooks = 1e5;
  const double duration_s = law.duration_s();
  const auto looks = static_cast<int>(std::min(kMostLooks, std::ceil(duration_s / cycle_s)));
  const double look_s = duration_s / looks;
  for (int i = 0; i < looks; ++i) {
    const PathMoment moment = MomentAt(path, law, (i + 0.5) * look_s);
    meter.Look(path.joints.At(moment.s), moment, path.sections[path.SectionAt(moment.s)],
               begin_s + i * look_s, begin_s + (i + 1) * look_s);
  }
}

}  // namespace qal
