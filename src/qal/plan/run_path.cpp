#include "run_path.h"

#include <algorithm>
#include <utility>

#include "../solve/kinematics.h"
#include "joints_tool.h"
#include "path_failure.h"

namespace qal {

namespace {

// The joints along a joint move at a place of it.
PathPoint JointWayAt(const Way& way, double begin, double x) {
  PathPoint point = {begin + x, {}, {}, {}, {}};
  for (size_t j = 0; j < 6; ++j) {
    const double distance = way.to[j] - way.from[j];
    point.value[j] = x < way.span ? way.from[j] + x / way.span * distance : way.to[j];
    point.first[j] = distance / way.span;
  }
  return point;
}

// Whether a corner's joints count.
bool LooksAtJoints(const Zone& zone) { return zone.joint_rad < kNoLimit; }

void ShrinkBy(double factor, Rounding& rounding) {
  rounding.spans.before *= factor;
  rounding.spans.after *= factor;
  rounding.spans.span *= factor;
}

double FarthestJoint(const JointPath& path, const Joints& from) {
  constexpr int kLooks = 8;
  double farthest = 0;
  for (size_t piece = 0; piece < path.size(); ++piece) {
    for (int i = 0; i <= kLooks; ++i) {
      const double s = path.begin(piece) + path.length(piece) * i / kLooks;
      farthest = std::max(farthest, LargestDifference(path.At(s, piece).value, from));
    }
  }
  return farthest;
}

// A failure on a way that begins at a place of the path.
ProgramFailure FailedOn(const Way& way, double begin, PlanFailure failure) {
  failure.along = std::clamp((failure.along - begin) / way.span, 0.0, 1.0);
  return {std::move(failure), way.step};
}

}  // namespace

// The next step that moves, if the motion goes on without a stop before it.
RunPath::Failure RunPath::FindWay(const WayStart& start, std::optional<Way>& way) {
  for (; next_ < program_.steps.size() && IsMotion(program_.steps[next_]); ++next_) {
    Result<Way> found = WayOf(arm_, program_.steps[next_], start);
    if (!found) {
      PlanFailure failure;
      failure.error = found.error();
      // What is wrong with a step is so at its end.
      failure.along = 1;
      failure.before = {start.joints, start.pose};
      return ProgramFailure{std::move(failure), next_};
    }
    found->step = next_;
    if (found->moves()) {
      way = *std::move(found);
      ++next_;
      return std::nullopt;
    }
    if (way_ && !found->zone) {
      ++next_;
      return std::nullopt;
    }
  }
  return std::nullopt;
}

std::optional<JointPath> RunPath::PathFrom(const Way& way, double begin,
                                           const Joints& joints) const {
  if (way.tool == nullptr) return JointPath(JointWayAt(way, begin, 0));
  const auto first = ToolSolver(*screws_, *way.tool, begin).Solve(begin, joints);
  if (!first) return std::nullopt;
  return JointPath(*first);
}

RunPath::Failure RunPath::Begin() {
  const WayStart start = {start_.pose, start_.joints};
  if (auto failure = FindWay(start, way_)) return failure;
  if (!way_) {
    done_ = true;
    return std::nullopt;
  }
  const auto screws = Screws::Of(arm_, start_.joints);
  if (!screws) return ProgramFailure{{screws.error(), 0, start_}, way_->step};
  screws_ = *screws;
  auto joints = PathFrom(*way_, 0, start_.joints);
  if (!joints) {
    return FailedOn(*way_, 0, NoWayOn(arm_, *way_->tool, 0, {0, start_.joints, {}, {}, {}}));
  }
  // Exactly where the arm stands, not but for the solver's rounding.
  PathPoint first = joints->last();
  first.value = start_.joints;
  made_.path.joints = JointPath(first);
  return std::nullopt;
}

// Leads joints along a way, which begins at a place of the path, to `to` of its own.
RunPath::Failure RunPath::Follow(const Way& way, double begin, double to, JointPath& joints) {
  if (way.tool == nullptr) {
    // In parts, since a law has its places by them.
    constexpr int kParts = 4;
    const double from = joints.last().s - begin;
    for (int i = 1; i <= kParts; ++i) {
      const double x = i < kParts ? from + (to - from) * i / kParts : to;
      joints.Append(JointWayAt(way, begin, x));
    }
    return std::nullopt;
  }
  const PlacedPath placed = {*way.tool, begin, joints.last().s, begin + to};
  auto failure =
      FollowTool(arm_, *screws_, placed, way.max_orientation_error_rad, joints, made_.passes);
  if (failure) return FailedOn(way, begin, *std::move(failure));
  return std::nullopt;
}

RunPath::Failure RunPath::AppendWay(JointPath joints, double to) {
  if (auto failure = LeavesRange(arm_, joints)) {
    return FailedOn(*way_, way_begin_, *std::move(failure));
  }
  PathSection section = way_->SectionOf(arm_);
  section.begin = joints.begin(0);
  section.tool_begin = way_begin_;
  made_.path.joints.Append(joints);
  made_.path.sections.push_back(std::move(section));
  made_.stretches.push_back({way_->step, passed_ / way_->span, to / way_->span});
  passed_ = to;
  return std::nullopt;
}

// Ends the run at the end of the way.
RunPath::Failure RunPath::Stop(JointPath joints, double reached) {
  if (reached < way_->span) {
    if (auto failure = Follow(*way_, way_begin_, way_->span, joints)) return failure;
  }
  if (auto failure = AppendWay(std::move(joints), way_->span)) return failure;
  done_ = true;
  pose_ = WayEnd();
  return std::nullopt;
}

// Where the way has the tool at its end.
Pose RunPath::WayEnd() const {
  if (way_->tool != nullptr) return way_->tool->PoseAt(way_->span);
  // The solver had a pose for where the arm stood; without one here it stays at that.
  const auto pose = Forward(arm_, way_->to);
  return pose ? *pose : pose_;
}

RunPath::Failure RunPath::Extend() {
  if (!way_) {
    auto failure = Begin();
    if (failure || done_) return failure;
  }
  JointPath ahead(made_.path.joints.last());
  const bool ends =
      !way_->zone || next_ == program_.steps.size() || !IsMotion(program_.steps[next_]);
  if (ends) return Stop(std::move(ahead), passed_);

  // The joints at the corner, where they count.
  double reached = passed_;
  const size_t passes = made_.passes.size();
  if (way_->tool == nullptr || LooksAtJoints(*way_->zone) || NeedsJoints(program_.steps[next_])) {
    reached = way_->span;
    if (auto failure = Follow(*way_, way_begin_, reached, ahead)) return failure;
  }
  const WayStart corner = {WayEnd(), ahead.last().value};
  std::optional<Way> next;
  if (auto failure = FindWay(corner, next)) return failure;
  // Past a singularity that is passed there the corner's joints don't tell of the zone's.
  if (!next || made_.passes.size() > passes) {
    if (next) next_ = next->step;
    return Stop(std::move(ahead), reached);
  }
  return Round(*next, ahead);
}

RunPath::Failure RunPath::MakeZone(const Way& next, const Rounding& rounding,
                                   const JointPath& to_corner, const JointPath& from_corner,
                                   JointPath& zone, std::shared_ptr<const ToolPath>& tool) {
  const double begin = zone.last().s;
  const double end = begin + rounding.spans.span;
  if (way_->tool == nullptr || next.tool == nullptr) {
    (void)qal::Follow(JointZoneSolver(rounding.spans, to_corner, from_corner, begin), end, zone);
    tool = std::make_shared<const JointsTool>(arm_, *screws_, zone, start_.pose);
    return std::nullopt;
  }
  tool = std::make_shared<const ZonePath>(way_->tool, next.tool, rounding.spans);
  const double error = std::min(way_->max_orientation_error_rad, next.max_orientation_error_rad);
  if (auto failure =
          FollowTool(arm_, *screws_, {*tool, begin, begin, end}, error, zone, made_.passes)) {
    failure->along = way_begin_ + way_->span;
    return FailedOn(*way_, way_begin_, *std::move(failure));
  }
  return std::nullopt;
}

// The zone's halves belong to their ways. In one of joints, a way of the tool still limits its
// half.
void RunPath::AppendZone(const Way& next, const Rounding& rounding, const JointPath& zone,
                         const std::shared_ptr<const ToolPath>& tool) {
  const auto& [before, after, span] = rounding.spans;
  const double begin = zone.begin(0);
  for (const bool is_first : {true, false}) {
    Way half = is_first ? *way_ : next;
    half.straight = false;
    half.tool = half.tool != nullptr ? tool : nullptr;
    PathSection section = half.SectionOf(arm_);
    section.begin = is_first ? begin : begin + span / 2;
    section.tool_begin = begin;
    made_.path.sections.push_back(std::move(section));
    made_.stretches.push_back(is_first ? StepStretch{half.step, (half.span - before) / half.span, 1}
                                       : StepStretch{half.step, 0, after / half.span});
  }
  made_.path.joints.Append(zone);
  made_.corners.push_back(
      {way_->step, begin, begin + span, rounding.farthest, rounding.deviation_m});
  passed_ = after;
  way_begin_ = zone.last().s - after;
}

// The zone between the way and the next, as far as it can be told before it is followed.
std::optional<Rounding> RunPath::FirstRounding(const Way& next, const JointPath& to_corner,
                                               const JointPath& from_corner) const {
  const bool of_joints = way_->tool == nullptr || next.tool == nullptr;
  if (from_corner.size() == 0 && (of_joints || LooksAtJoints(*way_->zone))) return std::nullopt;
  const auto known = [](const JointPath& path) { return path.size() > 0 ? &path : nullptr; };
  return RoundingOf({*screws_,
                     {way_->tool.get(), known(to_corner), way_->span, true},
                     {next.tool.get(), known(from_corner), next.span, false}},
                    *way_->zone);
}

// How far from their corner the joints get in a zone. Where nobody needs the corner, they are
// solved for it now; where it has none, in a zone of the tool about it, that is infinite.
double RunPath::FarthestFromCorner(const JointPath& around, const JointPath& to_corner) const {
  if (to_corner.size() > 0) return FarthestJoint(around, to_corner.last().value);
  const double end = way_begin_ + way_->span;
  const Joints near = around.At((around.begin(0) + around.last().s) / 2).value;
  const auto corner = ToolSolver(*screws_, *way_->tool, way_begin_).Solve(end, near);
  return corner ? FarthestJoint(around, corner->value) : kNoLimit;
}

// Leads the path around the corner to the next way.
// @param to_corner from the path's end on; as far as it is known
RunPath::Failure RunPath::Round(const Way& next, const JointPath& to_corner) {
  const Zone& zone = *way_->zone;
  const bool known = to_corner.size() > 0;
  const double end = way_begin_ + way_->span;
  JointPath from_corner;
  if (known) {
    if (auto path = PathFrom(next, end, to_corner.last().value)) {
      from_corner = *std::move(path);
      if (auto failure = Follow(next, end, next.span / 2, from_corner)) return failure;
    }
  }
  auto rounding = FirstRounding(next, to_corner, from_corner);
  while (rounding) {
    const double leave = way_->span - rounding->spans.before;
    JointPath ahead = to_corner;
    if (known) {
      ahead.CutAfter(way_begin_ + leave);
    } else if (auto failure = Follow(*way_, way_begin_, leave, ahead)) {
      return failure;
    }
    JointPath around(ahead.last());
    std::shared_ptr<const ToolPath> tool;
    if (auto failure = MakeZone(next, *rounding, to_corner, from_corner, around, tool)) {
      return failure;
    }
    // Of a zone of the tool the joints are known only now.
    rounding->farthest.joint_rad = FarthestFromCorner(around, to_corner);
    if (rounding->farthest.joint_rad > zone.joint_rad * (1 + 1e-9)) {
      ShrinkBy(0.9, *rounding);
      continue;
    }
    if (auto failure = AppendWay(std::move(ahead), leave)) return failure;
    if (auto failure = LeavesRange(arm_, around)) {
      failure->along = end;
      return FailedOn(*way_, way_begin_, *std::move(failure));
    }
    AppendZone(next, *rounding, around, tool);
    way_ = next;
    return std::nullopt;
  }
  next_ = next.step;
  return Stop(to_corner, known ? way_->span : passed_);
}

}  // namespace qal
