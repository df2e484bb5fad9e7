#include "line.h"

#include <algorithm>
#include <cmath>

#include "../model/rotations.h"
#include "../solve/kinematics.h"
#include "../solve/solver_calls.h"
#include "fastest_law.h"
#include "joint_limits.h"
#include "line_failure.h"
#include "load.h"
#include "stretches.h"
#include "wrist_pass.h"

namespace qal {

struct [[gnu::visibility("hidden")]] LineMotion::Held {
  LinePath line;
  JointPath joints;
  TimeLaw law;
  LineLimits limits;
  State start;
  State end;
  Arm arm;
  std::vector<WristPass> passes = {};

  bool moves() const { return law.size() > 0; }
  const State* EndAt(double time_s) const;
  MotionState StateAt(const PathMoment& moment) const;
  Pose PoseAt(double s) const;
  PathMoment MomentAt(double time_s) const {
    PathMoment moment = law.At(time_s);
    moment.s = std::clamp(moment.s, 0.0, 1.0);
    return moment;
  }
};

namespace {

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

// Of s, of which the whole line is 1.
PathLimits LimitsAlong(const Arm& arm, const LineLimits& limits, const LinePath& line) {
  const auto of_s = [&](double tool, double turn) {
    return std::min(tool / line.length_m(), turn / line.angle_rad());
  };
  PathLimits along = {};
  along.speed = of_s(limits.speed_m_s, limits.turn_speed_rad_s);
  along.acceleration = of_s(limits.acceleration_m_s2, limits.turn_acceleration_rad_s2);
  along.jerk = of_s(limits.jerk_m_s3, limits.turn_jerk_rad_s3);
  for (size_t j = 0; j < 6; ++j) {
    const AxisLimits joint = ScaledLimits(arm.joints()[j], limits.scale);
    along.joint_velocity[j] = joint.velocity;
    along.joint_acceleration[j] = joint.acceleration;
    along.joint_jerk[j] = joint.jerk;
  }
  return along;
}

// Follows a line; past wrist singularities, where that is allowed.
Result<JointPath, PlanFailure> JointsAlong(const Arm& arm, const Screws& screws,
                                           const LinePath& line, const Joints& start,
                                           const LineLimits& limits,
                                           std::vector<WristPass>& passes) {
  const LineSolver solver(screws, line);
  const auto first = solver.Solve(0, start);
  if (!first) return NoWayOn(arm, line, {0, start, {}, {}, {}});
  JointPath joints(*first);
  const double error_rad = limits.max_orientation_error_rad;
  while (true) {
    const bool arrived = Follow(solver, 1, joints) >= 1;
    // A line has few places where the wrist is bent straight.
    constexpr size_t kMostPasses = 8;
    if (error_rad > 0 && passes.size() < kMostPasses) {
      const double after = passes.empty() ? 0 : passes.back().end;
      if (const auto pass = PassWrist(arm, screws, line, error_rad, after, joints)) {
        passes.push_back(*pass);
        continue;
      }
    }
    if (!arrived) return NoWayOn(arm, line, joints.last());
    return joints;
  }
}

}  // namespace

double LineMotion::duration_s() const { return held_->law.duration_s(); }
double LineMotion::length_m() const { return held_->line.length_m(); }
double LineMotion::angle_rad() const { return held_->line.angle_rad(); }

double LineMotion::orientation_error_rad() const {
  double largest = 0;
  for (const WristPass& pass : held_->passes) {
    largest = std::max(largest, pass.orientation_error_rad);
  }
  return largest;
}

double LineMotion::AlongAt(double time_s) const {
  if (!(time_s > 0) || !held_->moves()) return held_->moves() ? 0 : 1;
  return time_s < duration_s() ? held_->MomentAt(time_s).s : 1;
}

// Before the motion its start, after it its end; of a motion that is none the start.
const State* LineMotion::Held::EndAt(double time_s) const {
  if (!(time_s > 0) || !moves()) return &start;
  return time_s < law.duration_s() ? nullptr : &end;
}

MotionState LineMotion::Held::StateAt(const PathMoment& moment) const {
  const PathPoint q = joints.At(moment.s);
  const JointRates rates = RatesOf(q, moment);
  return {q.value, rates[0], rates[1]};
}

Pose LineMotion::Held::PoseAt(double s) const {
  Pose pose = line.At(s);
  const bool off = std::any_of(passes.begin(), passes.end(), [s](const WristPass& pass) {
    return pass.begin < s && s < pass.end;
  });
  if (!off) return pose;
  const auto is = Forward(arm, joints.At(s).value);
  if (is) pose.orientation = SignedAs(is->orientation, pose.orientation);
  return pose;
}

MotionState LineMotion::At(double time_s) const {
  if (const State* const end = held_->EndAt(time_s)) return {end->joints, {}, {}};
  return held_->StateAt(held_->MomentAt(time_s));
}

Pose LineMotion::PoseAt(double time_s) const {
  if (const State* const end = held_->EndAt(time_s)) return end->pose;
  return held_->PoseAt(held_->MomentAt(time_s).s);
}

Sample LineMotion::SampleAt(double time_s) const {
  if (const State* const end = held_->EndAt(time_s)) {
    return {time_s, end->joints, {}, {}, end->pose};
  }
  const PathMoment moment = held_->MomentAt(time_s);
  const auto [q, velocities, accelerations] = held_->StateAt(moment);
  return {time_s, q, velocities, accelerations, held_->PoseAt(moment.s)};
}

LineMotion LineMotion::InDuration(double duration_s) const {
  const double factor = duration_s / this->duration_s();
  if (!(factor > 1) || !std::isfinite(factor)) return *this;
  Held slower = *held_;
  slower.law = held_->law.Slower(factor);
  return LineMotion(std::make_shared<const Held>(std::move(slower)));
}

Result<LineMotion, PlanFailure> PlanLine(const Arm& arm, const State& from, const Pose& to,
                                         const LineLimits& limits) {
  const auto start = Forward(arm, from.joints);
  if (!start) return PlanFailure{start.error(), 0, from};
  const State before = {from.joints, *start};
  if (const auto refused = RefusedLimits(limits)) return PlanFailure{*refused, 0, before};
  if (const auto refused = RefusedPose(to)) return PlanFailure{*refused, 0, before};
  const auto screws = Screws::Of(arm, from.joints);
  if (!screws) return PlanFailure{screws.error(), 0, before};

  const LinePath line(*start, to);
  LineMotion::Held held = {line, {}, {}, limits, before, {from.joints, line.At(1)}, arm};
  // A line of less is nothing that a motor does.
  constexpr double kNothing = 1e-12;
  if (line.length_m() > kNothing || line.angle_rad() > kNothing) {
    auto joints = JointsAlong(arm, *screws, line, from.joints, limits, held.passes);
    if (!joints) return joints.error();
    held.joints = *std::move(joints);
    if (auto failure = LeavesRange(arm, line, held.joints)) return *failure;
    held.end.joints = held.joints.last().value;
    held.law = FastestLaw(held.joints, LimitsAlong(arm, limits, line), arm.cycle_s().value);
  }
  return LineMotion(std::make_shared<const LineMotion::Held>(std::move(held)));
}

std::vector<Binding> LineMotion::bindings() const {
  if (!held_->moves()) return {};
  const LineLimits& limits = held_->limits;
  const PathLimits along = LimitsAlong(held_->arm, limits, held_->line);
  const double of_tool[] = {limits.speed_m_s, limits.acceleration_m_s2, limits.jerk_m_s3};
  const double of_turn[] = {limits.turn_speed_rad_s, limits.turn_acceleration_rad_s2,
                            limits.turn_jerk_rad_s3};
  const JointRates of_joints = {along.joint_velocity, along.joint_acceleration, along.joint_jerk};
  // What binds is looked for once a cycle, in the middle of it.
  constexpr double kMostLooks = 1e5;
  const auto looks =
      static_cast<int>(std::min(kMostLooks, std::ceil(duration_s() / held_->arm.cycle_s().value)));
  const double look_s = duration_s() / looks;
  std::array<std::array<Stretches, 3>, 8> stretches;  // of tool, turn and joints; by derivative
  for (int i = 0; i < looks; ++i) {
    const PathMoment moment = held_->MomentAt((i + 0.5) * look_s);
    const JointRates rates = RatesOf(held_->joints.At(moment.s), moment);
    const double of_s[] = {moment.speed, moment.acceleration, moment.jerk};
    for (size_t order = 0; order < 3; ++order) {
      const auto add = [&](size_t whose, double rate, double limit) {
        // A plan leaves some thousandths of a limit here and there.
        constexpr double kReached = 0.985;
        if (std::fabs(rate) < kReached * limit) return;
        stretches[whose][order].Add(i * look_s, (i + 1) * look_s);
      };
      add(6, length_m() * of_s[order], of_tool[order]);
      add(7, angle_rad() * of_s[order], of_turn[order]);
      for (size_t j = 0; j < 6; ++j) add(j, rates[order][j], of_joints[order][j]);
    }
  }
  constexpr Limit kKinds[3][3] = {
      {Limit::kToolSpeed, Limit::kToolAcceleration, Limit::kToolJerk},
      {Limit::kTurnSpeed, Limit::kTurnAcceleration, Limit::kTurnJerk},
      {Limit::kJointVelocity, Limit::kJointAcceleration, Limit::kJointJerk}};
  std::vector<Binding> bindings;
  for (size_t order = 0; order < 3; ++order) {
    for (size_t whose = 0; whose < 8; ++whose) {
      const Limit limit = kKinds[whose < 6 ? 2 : whose - 6][order];
      const int joint = whose < 6 ? static_cast<int>(whose) : -1;
      stretches[whose][order].AppendTo(bindings, limit, joint, duration_s());
    }
  }
  SortByShare(bindings);
  return bindings;
}

}  // namespace qal
