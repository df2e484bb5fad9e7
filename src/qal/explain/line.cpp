#include <algorithm>
#include <cmath>
#include <limits>

#include "../plan/followed_line.h"
#include "../plan/linear_system.h"
#include "causes.h"
#include "explain.h"
#include "failing_point.h"
#include "line_changes.h"
#include "line_trial.h"

namespace qal {

LineLimits LimitedTrial::Limits(const LineRequest& request) const {
  LineLimits limits = limits_;
  limits.max_orientation_error_rad = request.orientation_error;
  return limits;
}

bool LimitedTrial::Follows(const LineRequest& request) const {
  return !FollowLine(request.arm, request.from, request.to, Limits(request)).failure;
}

LineAttempt LimitedTrial::Plan(const LineRequest& request) const {
  const auto motion = PlanLine(request.arm, request.from, request.to, Limits(request));
  if (!motion) return {motion.error()};
  return {std::nullopt, std::nullopt, motion->duration_s()};
}

namespace {

// How quickly joints would have to turn at a place for the tool to keep its speed.
std::optional<NeededSpeed> NeededAt(const Arm& arm, const Joints& joints, const LinePath& line,
                                    double way_per_s, double scale) {
  const auto jacobian = Jacobian(arm, joints);
  const auto distances = DistanceToSingularities(arm, joints);
  if (!jacobian || !distances) return std::nullopt;
  const ToolRates rates = line.RatesAt(0);
  const Joints turns = LinearSystem(jacobian->element)
                           .Solve({rates.velocity[0], rates.velocity[1], rates.velocity[2],
                                   rates.turn[0], rates.turn[1], rates.turn[2]});
  NeededSpeed needed = {-1, 0, 0, distances->smallest_singular_value};
  double worst = 0;
  for (size_t j = 0; j < turns.size(); ++j) {
    double speed = std::fabs(turns[j]) * way_per_s;
    if (!std::isfinite(speed)) speed = std::numeric_limits<double>::infinity();
    const double allowed = arm.joints()[j].velocity_rad_s.value * scale;
    if (!(speed / allowed > worst)) continue;
    worst = speed / allowed;
    needed.joint = static_cast<int>(j);
    needed.needed_rad_s = speed;
    needed.allowed_rad_s = allowed;
  }
  return needed;
}

// How many solutions of a place are near joints.
int SolutionsNear(const Arm& arm, const Pose& pose, const Joints& joints) {
  constexpr double kNearRad = 0.5;
  const auto candidates = Inverse(arm, pose, joints);
  if (!candidates) return 0;
  return static_cast<int>(
      std::count_if(candidates->begin(), candidates->end(), [&joints](const Candidate& candidate) {
        return LargestDifference(candidate.joints, joints) < kNearRad;
      }));
}

// Whether two solutions meet at a place, beyond which there is neither. At other singularities the
// solutions that meet are joints apart, as the wrist's are by half a turn, or all go on.
bool BranchEnds(const Arm& arm, const LinePath& line, double along, const Joints& joints) {
  for (const double aside : {1e-5, 1e-4, 1e-3}) {  // of the way
    if (SolutionsNear(arm, line.PoseAt(along - aside), joints) >= 2 &&
        SolutionsNear(arm, line.PoseAt(along + aside), joints) == 0) {
      return true;
    }
  }
  return false;
}

// What a line that `trial` plans is, and where it fails.
Explanation ExplainTried(const LineTrial& trial, const LineRequest& asked,
                         const LineLimits& limits) {
  Explanation why;
  why.before = asked.from.joints;
  const LineAttempt attempt = trial.Plan(asked);
  if (!attempt.failure) {
    why.duration_s = attempt.duration_s;
    return why;
  }
  why.error = attempt.failure->error;
  why.cause = CauseOf(why.error.reason);
  if (why.cause == Cause::kRequest || why.cause == Cause::kSolver) {
    // There may be a line all the same, with fewer degrees of freedom or at another speed.
    if (why.error.reason != Reason::kNotFinite && why.error.reason != Reason::kNotAnOrientation) {
      why.changes = LineChanges(trial, asked, why.cause, attempt.failure->along);
    }
    return why;
  }

  const double along = attempt.failure->along;
  const FollowedLine followed = FollowLine(asked.arm, asked.from, asked.to, limits);
  const LinePath& line = followed.line;
  if (followed.moves()) {
    why.before = followed.joints.At(std::min(along, followed.joints.last().s)).value;
  }
  const ToolPace pace(line, limits);
  why.point = FirstBeyond(line, pace, along, asked.arm.cycle_s().value);
  if (attempt.point) why.point->index = *attempt.point;
  if (why.cause == Cause::kSingularity) {
    why.speed = NeededAt(asked.arm, why.before, line, pace.SpeedAt(pace.duration_s() / 2),
                         limits.scale.velocity);
    if (BranchEnds(asked.arm, line, along, why.before)) why.cause = Cause::kBranchEnds;
  }
  const StepBounds bounds =
      StepBoundsOf(asked.arm, limits.scale.velocity, asked.arm.cycle_s().value);
  why.solutions = SolutionsOf(asked.arm, why.point->pose, why.before, bounds);
  if (why.cause == Cause::kOutOfReach) {
    const bool end_is_out = !Inverse(asked.arm, asked.to, why.before);
    why.way_back = WayBack(asked.arm, end_is_out ? asked.to : why.point->pose, why.before);
  }
  why.changes = LineChanges(trial, asked, why.cause, along);
  return why;
}

LineRequest RequestOf(const Arm& arm, const State& from, const Pose& to) {
  LineRequest request = {arm, from, to};
  if (const auto start = Forward(arm, from.joints)) request.from.pose = *start;
  return request;
}

}  // namespace

Explanation ExplainLine(const Arm& arm, const State& from, const Pose& to,
                        const LineLimits& limits) {
  LineRequest request = RequestOf(arm, from, to);
  request.orientation_error = limits.max_orientation_error_rad;
  return ExplainTried(LimitedTrial(limits), request, limits);
}

Explanation ExplainLine(const Arm& arm, const State& from, const Pose& to,
                        const LinePlanner& planner) {
  return ExplainTried(PlannerTrial(planner), RequestOf(arm, from, to), {});
}

}  // namespace qal
