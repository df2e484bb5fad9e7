#include "line.h"

#include <algorithm>
#include <cmath>

#include "../model/rotations.h"
#include "../solve/kinematics.h"
#include "../solve/solver_calls.h"
#include "fastest_law.h"
#include "line_path.h"
#include "path_failure.h"
#include "path_motion.h"
#include "wrist_pass.h"

namespace qal {

struct [[gnu::visibility("hidden")]] LineMotion::Held {
  LinePath line;
  LimitedPath path;
  TimeLaw law;
  State start;
  State end;
  Arm arm;
  std::vector<WristPass> passes = {};

  bool moves() const { return law.size() > 0; }
  const State* EndAt(double time_s) const;
  Pose PoseAt(double s) const;
};

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
  return time_s < duration_s() ? MomentAt(held_->path, held_->law, time_s).s : 1;
}

// Before the motion its start, after it its end; of a motion that is none the start.
const State* LineMotion::Held::EndAt(double time_s) const {
  if (!(time_s > 0) || !moves()) return &start;
  return time_s < law.duration_s() ? nullptr : &end;
}

Pose LineMotion::Held::PoseAt(double s) const {
  Pose pose = line.PoseAt(s);
  const bool off = std::any_of(passes.begin(), passes.end(), [s](const WristPass& pass) {
    return pass.begin < s && s < pass.end;
  });
  if (!off) return pose;
  const auto is = Forward(arm, path.joints.At(s).value);
  if (is) pose.orientation = SignedAs(is->orientation, pose.orientation);
  return pose;
}

MotionState LineMotion::At(double time_s) const {
  if (const State* const end = held_->EndAt(time_s)) return {end->joints, {}, {}};
  return StateAt(held_->path, MomentAt(held_->path, held_->law, time_s));
}

Pose LineMotion::PoseAt(double time_s) const {
  if (const State* const end = held_->EndAt(time_s)) return end->pose;
  return held_->PoseAt(MomentAt(held_->path, held_->law, time_s).s);
}

Sample LineMotion::SampleAt(double time_s) const {
  if (const State* const end = held_->EndAt(time_s)) {
    return {time_s, end->joints, {}, {}, end->pose};
  }
  const PathMoment moment = MomentAt(held_->path, held_->law, time_s);
  const auto [q, velocities, accelerations] = StateAt(held_->path, moment);
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

  const LinePath line(*start, to, 1);
  LineMotion::Held held = {line, {}, {}, before, {from.joints, line.PoseAt(1)}, arm};
  // A line of less is nothing that a motor does.
  constexpr double kNothing = 1e-12;
  if (line.length_m() > kNothing || line.angle_rad() > kNothing) {
    LimitedPath& path = held.path;
    const ToolSolver solver(*screws, line, 0);
    const auto first = solver.Solve(0, from.joints);
    if (!first) return NoWayOn(arm, line, 0, {0, from.joints, {}, {}, {}});
    path.joints = JointPath(*first);
    if (auto failure = FollowTool(arm, *screws, {line, 0, 0, 1}, limits.max_orientation_error_rad,
                                  path.joints, held.passes)) {
      return *failure;
    }
    if (auto failure = LeavesRange(arm, path.joints)) return *failure;
    held.end.joints = path.joints.last().value;
    PathSection section;
    SetJointLimits(arm, limits.scale, section);
    section.tool = std::make_shared<const LinePath>(line);
    section.tool_limits = ToolLimitsOf(limits);
    SetStraight(line.length_m(), line.angle_rad(), section);
    path.sections.push_back(std::move(section));
    held.law = FastestLaw(path, arm.cycle_s().value);
  }
  return LineMotion(std::make_shared<const LineMotion::Held>(std::move(held)));
}

std::vector<Binding> LineMotion::bindings() const {
  if (!held_->moves()) return {};
  BindingMeter meter;
  LookThrough(held_->path, held_->law, 0, held_->arm.cycle_s().value, meter);
  return meter.Told(duration_s());
}

}  // namespace qal
