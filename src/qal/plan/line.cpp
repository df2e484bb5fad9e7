#include "line.h"

#include <algorithm>
#include <cmath>

#include "../model/rotations.h"
#include "../solve/kinematics.h"
#include "fastest_law.h"
#include "line_failure.h"
#include "path_follower.h"

namespace qal {

struct [[gnu::visibility("hidden")]] LineMotion::Held {
  LinePath line;
  JointPath joints;
  TimeLaw law;
  LineLimits limits;
  PathLimits path_limits;
  State start;
  State end;
  double orientation_error_rad;
  double cycle_s;

  bool moves() const { return law.size() > 0; }
  PathMoment MomentAt(double time_s) const {
    PathMoment moment = law.At(time_s);
    moment.s = std::clamp(moment.s, 0.0, 1.0);
    return moment;
  }
};

namespace {

std::optional<Error> RefusedScale(const char* name, double value) {
  if (value > 0 && value <= 1) return std::nullopt;
  return Error{Reason::kSetting, -1, value, value > 1 ? 1.0 : 0.0, name};
}

std::optional<Error> RefusedLimit(const char* name, double value) {
  if (value > 0 && std::isfinite(value)) return std::nullopt;
  return Error{Reason::kSetting, -1, value, 0, name};
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
    if (auto refused = RefusedLimit(name, value)) return refused;
  }
  const std::pair<const char*, double> scales[] = {
      {"velocity_scale", limits.scale.velocity},
      {"acceleration_scale", limits.scale.acceleration},
      {"jerk_scale", limits.scale.jerk}};
  for (const auto& [name, value] : scales) {
    if (auto refused = RefusedScale(name, value)) return refused;
  }
  constexpr double kMostErrorRad = 0.5;
  const double error = limits.max_orientation_error_rad;
  if (error >= 0 && error <= kMostErrorRad) return std::nullopt;
  return Error{Reason::kSetting, -1, error, error > 0 ? kMostErrorRad : 0.0,
               "max_orientation_error_rad"};
}

std::optional<Error> RefusedPose(const Pose& pose) {
  const auto& [position, orientation] = pose;
  const auto& [w, x, y, z] = orientation;
  for (const double value : {position.x, position.y, position.z, w, x, y, z}) {
    if (!std::isfinite(value)) return Error{Reason::kNotFinite, -1, value};
  }
  // Below it a quaternion is a zero with rounding errors; above it, it has no square.
  const double length = std::sqrt(w * w + x * x + y * y + z * z);
  if (length > 1e-6 && std::isfinite(length)) return std::nullopt;
  return Error{Reason::kNotAnOrientation, -1, length};
}

PathLimits LimitsAlong(const Arm& arm, const LineLimits& limits, double length_m,
                       double angle_rad) {
  // Of s, of which the whole line is 1.
  const auto of_s = [&](double tool, double turn) {
    return std::min(tool / length_m, turn / angle_rad);
  };
  PathLimits along = {of_s(limits.speed_m_s, limits.turn_speed_rad_s),
                      of_s(limits.acceleration_m_s2, limits.turn_acceleration_rad_s2),
                      of_s(limits.jerk_m_s3, limits.turn_jerk_rad_s3),
                      {},
                      {},
                      {}};
  for (size_t j = 0; j < 6; ++j) {
    const JointModel& joint = arm.joints()[j];
    along.joint_velocity[j] = limits.scale.velocity * joint.velocity_rad_s.value;
    along.joint_acceleration[j] = limits.scale.acceleration * joint.acceleration_rad_s2.value;
    along.joint_jerk[j] = limits.scale.jerk * joint.jerk_rad_s3.value;
  }
  return along;
}

}  // namespace

double LineMotion::duration_s() const { return held_->law.duration_s(); }
double LineMotion::length_m() const { return held_->line.length_m(); }
double LineMotion::angle_rad() const { return held_->line.angle_rad(); }
double LineMotion::orientation_error_rad() const { return held_->orientation_error_rad; }

double LineMotion::AlongAt(double time_s) const {
  if (!(time_s > 0) || !held_->moves()) return held_->moves() ? 0 : 1;
  return time_s < duration_s() ? held_->MomentAt(time_s).s : 1;
}

MotionState LineMotion::At(double time_s) const {
  if (!(time_s > 0) || !held_->moves()) return {held_->start.joints, {}, {}};
  if (!(time_s < duration_s())) return {held_->end.joints, {}, {}};
  const auto [s, speed, acceleration, jerk] = held_->MomentAt(time_s);
  const PathPoint q = held_->joints.At(s);
  MotionState state = {q.value, {}, {}};
  for (size_t j = 0; j < 6; ++j) {
    state.velocities[j] = q.first[j] * speed;
    state.accelerations[j] = q.second[j] * speed * speed + q.first[j] * acceleration;
  }
  return state;
}

Pose LineMotion::PoseAt(double time_s) const {
  if (!(time_s > 0)) return held_->start.pose;
  if (!(time_s < duration_s())) return held_->end.pose;
  return held_->line.At(held_->MomentAt(time_s).s);
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

  auto held = std::make_shared<LineMotion::Held>();
  held->line = LinePath(*start, to);
  held->limits = limits;
  held->start = before;
  held->end = {from.joints, held->line.At(1)};
  held->orientation_error_rad = 0;
  held->cycle_s = arm.cycle_s().value;
  // A line of less is nothing that a motor does.
  constexpr double kNothing = 1e-12;
  if (held->line.length_m() <= kNothing && held->line.angle_rad() <= kNothing) {
    return LineMotion(std::move(held));
  }
  const PathSolver solver(*screws, held->line);
  FollowedPath followed = Follow(solver, from.joints);
  if (followed.stopped < 1) return NoWayOn(arm, held->line, followed, from.joints);
  held->joints = std::move(followed.joints);
  if (auto failure = OutOfRange(arm, held->line, held->joints)) return *failure;
  held->end.joints = held->joints.last().value;
  held->path_limits = LimitsAlong(arm, limits, held->line.length_m(), held->line.angle_rad());
  held->law = FastestLaw(held->joints, held->path_limits, held->cycle_s);
  return LineMotion(std::move(held));
}

Trajectory Sampled(const Arm& arm, const LineMotion& motion) {
  const double cycle_s = arm.cycle_s().value;
  // A duration that is a whole number of cycles but for rounding is one.
  constexpr double kRounding = 1e-9;
  const double cycles = std::ceil(motion.duration_s() / cycle_s - kRounding);
  const LineMotion played = motion.InDuration(cycles * cycle_s);
  Trajectory trajectory;
  for (double i = 0; i <= cycles; ++i) {
    const double time_s = i < cycles ? i * cycle_s : played.duration_s();
    const auto [joints, velocities, accelerations] = played.At(time_s);
    trajectory.push_back({i * cycle_s, joints, velocities, accelerations, played.PoseAt(time_s)});
  }
  return trajectory;
}

}  // namespace qal
