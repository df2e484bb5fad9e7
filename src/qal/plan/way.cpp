#include "way.h"

#include <algorithm>
#include <cmath>

#include "../solve/kinematics.h"
#include "../solve/solver_calls.h"
#include "arc_path.h"
#include "joint_limits.h"
#include "line_path.h"
#include "path_motion.h"

namespace qal {

namespace {

// How much of the tool's way a turn counts for, of a joint or of the tool [m/rad]: the shoulder of
// a usual arm moves its tool about as far. Nothing but numbers' sizes depend on it.
constexpr double kMetresPerRad = 0.25;
// Less than this is nothing that a motor does, in m or rad.
constexpr double kNothing = 1e-12;
// The most that an arc may turn.
constexpr double kMostTurns = 100;

bool IsFinite(const Vec3& v) {
  return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

Result<Pose> PoseOf(const Arm& arm, const Target& target) {
  if (const auto* const joints = std::get_if<Joints>(&target)) return Forward(arm, *joints);
  const Pose& pose = std::get<Pose>(target);
  if (auto refused = RefusedPose(pose)) return *std::move(refused);
  return pose;
}

Result<Joints> JointsOf(const Arm& arm, const Target& target, const Joints& near) {
  if (const auto* const joints = std::get_if<Joints>(&target)) {
    const auto finite = [](double x) { return std::isfinite(x); };
    if (!std::all_of(joints->begin(), joints->end(), finite)) return Error{Reason::kNotFinite};
    return *joints;
  }
  const Result<State> nearest = Nearest(arm, std::get<Pose>(target), near);
  if (!nearest) return nearest.error();
  return nearest->joints;
}

double SpanOf(double length_m, double angle_rad) {
  const double span = std::max(length_m, kMetresPerRad * std::fabs(angle_rad));
  return span > kNothing ? span : 0;
}

Result<Way> JointWay(const Arm& arm, const JointStep& step, const WayStart& start) {
  if (auto refused = RefusedScale(step.scale)) return *std::move(refused);
  const Result<Joints> to = JointsOf(arm, step.to, start.joints);
  if (!to) return to.error();
  Way way;
  way.straight = true;
  way.from = start.joints;
  way.to = *to;
  way.scale = step.scale;
  way.zone = step.zone;
  if (auto refused = RefusedJoints(arm, way.to)) return *std::move(refused);
  const double farthest = LargestDifference(way.to, way.from);
  way.span = SpanOf(0, 2 * farthest);
  return way;
}

// Of joints that go straight the one that needs the most limits the parameter s.
void SetStraightJoints(const Way& way, PathSection& section) {
  section.straight = true;
  for (size_t j = 0; j < 6; ++j) {
    const double rate = std::fabs(way.to[j] - way.from[j]) / way.span;
    section.speed = std::min(section.speed, section.joint_velocity[j] / rate);
    section.acceleration = std::min(section.acceleration, section.joint_acceleration[j] / rate);
    section.jerk = std::min(section.jerk, section.joint_jerk[j] / rate);
  }
}

// What lines and arcs have in common.
Way ToolWay(const LineLimits& limits, const std::optional<Zone>& zone, double length_m,
            double angle_rad) {
  Way way;
  way.length_m = length_m;
  way.angle_rad = std::fabs(angle_rad);
  way.span = SpanOf(length_m, angle_rad);
  way.scale = limits.scale;
  way.tool_limits = ToolLimitsOf(limits);
  way.max_orientation_error_rad = limits.max_orientation_error_rad;
  way.zone = zone;
  return way;
}

Result<Way> LineWay(const Arm& arm, const LineStep& step, const WayStart& start) {
  if (auto refused = RefusedLimits(step.limits)) return *std::move(refused);
  const Result<Pose> to = PoseOf(arm, step.to);
  if (!to) return to.error();
  const LinePath line(start.pose, *to, 1);
  Way way = ToolWay(step.limits, step.zone, line.length_m(), line.angle_rad());
  way.straight = true;
  if (way.moves()) way.tool = std::make_shared<const LinePath>(start.pose, *to, way.span);
  return way;
}

// An arc but for its limits.
struct Arc {
  Vec3 to;
  Circle circle;
  double angle_rad;
  SteadyTurn turn;
};

SteadyTurn TurnAlong(ArcTurn turn, const Quat& from, const Quat& to, const Vector3& axis,
                     double angle_rad) {
  if (turn == ArcTurn::kToEnd) return {from, to};
  return {from, axis, turn == ArcTurn::kWithArc ? angle_rad : 0};
}

Result<Arc> ArcOf(const Arm& arm, const ArcThrough& step, const Pose& from) {
  if (!IsFinite(step.through)) return Error{Reason::kNotFinite};
  const Result<Pose> to = PoseOf(arm, step.to);
  if (!to) return to.error();
  const Vector3 start = ToVector(from.position);
  const Vector3 end = ToVector(to->position);
  const std::optional<Circle> circle = CircleThrough(start, ToVector(step.through), end);
  if (!circle) return Error{Reason::kNoArc, -1, 0, 0, "the three points are on a line"};
  const double angle = AngleAbout(*circle, start, end);
  return Arc{to->position, *circle, angle,
             TurnAlong(step.turn, from.orientation, to->orientation, circle->axis, angle)};
}

Result<Arc> ArcOf(const Arm& /*arm*/, const ArcAbout& step, const Pose& from) {
  const Vector3 axis = ToVector(step.axis);
  const double length = Length(axis);
  const double angle = step.angle_rad;
  if (!IsFinite(step.centre) || !IsFinite(step.axis) || !std::isfinite(angle)) {
    return Error{Reason::kNotFinite};
  }
  if (!(length > 0)) return Error{Reason::kNoArc, -1, 0, 0, "its axis has no direction"};
  if (std::fabs(angle) > kMostTurns * 2 * kPi) {
    return Error{Reason::kSetting, -1, angle, std::copysign(kMostTurns * 2 * kPi, angle),
                 "angle_rad"};
  }
  if (step.turn == ArcTurn::kToEnd) {
    return Error{Reason::kNoArc, -1, 0, 0, "an arc about an axis has no end to turn to"};
  }
  const Vector3 unit = (1 / length) * axis;
  const Vector3 start = ToVector(from.position);
  const Vector3 centre = ToVector(step.centre);
  const Circle circle = {centre + Dot(start - centre, unit) * unit, unit};
  const Vector3 radius = start - circle.centre;
  const Vector3 end =
      circle.centre + std::cos(angle) * radius + std::sin(angle) * Cross(unit, radius);
  return Arc{FromVector(end), circle, angle,
             TurnAlong(step.turn, from.orientation, from.orientation, unit, angle)};
}

Result<Way> ArcWay(const Arm& arm, const ArcStep& step, const WayStart& start) {
  if (auto refused = RefusedLimits(step.limits)) return *std::move(refused);
  const Result<Arc> arc =
      std::visit([&](const auto& kind) { return ArcOf(arm, kind, start.pose); }, step.arc);
  if (!arc) return arc.error();
  const double radius = Length(ToVector(start.pose.position) - arc->circle.centre);
  const double length_m = radius * std::fabs(arc->angle_rad);
  Way way = ToolWay(step.limits, step.zone, length_m, arc->turn.angle_rad());
  if (way.moves()) {
    way.tool = std::make_shared<const ArcPath>(start.pose.position, arc->to, arc->circle,
                                               arc->angle_rad, arc->turn, way.span);
  }
  return way;
}

}  // namespace

PathSection Way::SectionOf(const Arm& arm) const {
  PathSection section;
  SetJointLimits(arm, scale, section);
  section.tool = tool;
  section.tool_limits = tool_limits;
  if (!straight) return section;
  if (tool != nullptr) {
    SetStraight(length_m, angle_rad, section);
  } else {
    SetStraightJoints(*this, section);
  }
  return section;
}

bool IsMotion(const ProgramStep& step) {
  return !std::holds_alternative<WaitStep>(step) && !std::holds_alternative<ToolStep>(step);
}

bool NeedsJoints(const ProgramStep& step) { return std::holds_alternative<JointStep>(step); }

Result<Way> WayOf(const Arm& arm, const ProgramStep& step, const WayStart& start) {
  if (const auto* const joint = std::get_if<JointStep>(&step)) return JointWay(arm, *joint, start);
  if (const auto* const line = std::get_if<LineStep>(&step)) return LineWay(arm, *line, start);
  return ArcWay(arm, std::get<ArcStep>(step), start);
}

}  // namespace qal
