#include "line.h"

#include <algorithm>
#include <cmath>

#include "../model/rotations.h"
#include "../model/watched_solver.h"
#include "../solve/kinematics.h"
#include "fastest_law.h"
#include "followed_line.h"
#include "path_motion.h"

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
  FollowedLine followed = FollowLine(arm, from, to, limits);
  if (followed.failure) return *std::move(followed.failure);
  LineMotion::Held held = {followed.line,
                           {},
                           {},
                           followed.start,
                           {from.joints, followed.line.PoseAt(1)},
                           arm,
                           std::move(followed.passes)};
  if (followed.moves()) {
    LimitedPath& path = held.path;
    path.joints = std::move(followed.joints);
    held.end.joints = path.joints.last().value;
    PathSection section;
    SetJointLimits(arm, limits.scale, section);
    section.tool = std::make_shared<const LinePath>(held.line);
    section.tool_limits = ToolLimitsOf(limits);
    SetStraight(held.line.length_m(), held.line.angle_rad(), section);
    path.sections.push_back(std::move(section));
    path.go_on = WatchOf(arm.solver());
    try {
      held.law = FastestLaw(path, arm.cycle_s().value);
    } catch (const Interrupted&) {
      return PlanFailure{Error{Reason::kInterrupted}};
    }
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
