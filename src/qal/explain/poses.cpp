#include <algorithm>
#include <cmath>

#include "../model/rotations.h"
#include "../plan/joint_limits.h"
#include "explain.h"
#include "poses_changes.h"

namespace qal {

namespace {

// The first number of the request that is none, or a time that doesn't increase.
std::optional<Error> RefusedTimes(const std::vector<TimedPose>& poses) {
  for (size_t i = 0; i < poses.size(); ++i) {
    const double time_s = poses[i].time_s;
    if (!std::isfinite(time_s)) return Error{Reason::kNotFinite, -1, time_s};
    if (i == 0 || time_s > poses[i - 1].time_s) continue;
    return Error{Reason::kSetting, -1, time_s, poses[i - 1].time_s, "time_s"};
  }
  return std::nullopt;
}

FailingPoint PointAt(const std::vector<TimedPose>& poses, size_t failing) {
  FailingPoint point = {poses[failing].pose, failing};
  double length_m = 0;
  for (size_t i = 1; i < poses.size(); ++i) {
    length_m += Distance(poses[i - 1].pose.position, poses[i].pose.position);
    if (i == failing) point.distance_m = length_m;
  }
  point.along = length_m > 0 ? point.distance_m / length_m
                             : static_cast<double>(failing) / static_cast<double>(poses.size());
  point.time_s = poses[failing].time_s - poses.front().time_s;
  return point;
}

bool NearSingularity(const Singularities& distances) {
  constexpr double kNearRad = 0.1;
  constexpr double kNearM = 0.03;
  return distances.wrist_rad < kNearRad || distances.elbow_rad < kNearRad ||
         distances.shoulder_m < kNearM;
}

class PosesExplainer {
 public:
  PosesExplainer(const std::vector<TimedPose>& poses, const PosesRequest& request, Explanation& why)
      : poses_(poses), request_(request), why_(why) {}

  // Why the pose can't be passed, by its solutions.
  void Judge(size_t failing);

 private:
  void JudgeStep(size_t failing);
  NeededSpeed NeededTo(size_t failing, const Singularities& distances) const;

  const std::vector<TimedPose>& poses_;
  const PosesRequest& request_;
  Explanation& why_;
};

void PosesExplainer::Judge(size_t failing) {
  const Pose& pose = poses_[failing].pose;
  why_.point = PointAt(poses_, failing);
  why_.solutions =
      SolutionsOf(request_.arm, pose, why_.before, BoundsTo(poses_, failing, request_));
  if (why_.solutions.empty()) {
    why_.error = Inverse(request_.arm, pose, why_.before).error();
    why_.cause = CauseOf(why_.error.reason);
    if (why_.cause == Cause::kOutOfReach) why_.way_back = WayBack(request_.arm, pose, why_.before);
    return;
  }
  // The nearest one is what the joints before lead to.
  why_.error = *why_.solutions.front().refusal;
  why_.cause = CauseOf(why_.error.reason);
  if (why_.cause == Cause::kStepBound && failing > 0) JudgeStep(failing);
}

// A step that is too far: to a solution elsewhere, as the own one has ended; or next to a
// singularity; or for the arm's speed, or what is asked for.
void PosesExplainer::JudgeStep(size_t failing) {
  const auto before = Inverse(request_.arm, poses_[failing - 1].pose, why_.before);
  const bool fewer = before && why_.solutions.size() < before->size();
  if (fewer && BranchOf(request_.arm, why_.before) != why_.solutions.front().branch) {
    why_.cause = Cause::kBranchEnds;
    return;
  }
  const auto distances = DistanceToSingularities(request_.arm, why_.before);
  if (!distances) return;
  why_.speed = NeededTo(failing, *distances);
  if (NearSingularity(*distances)) {
    why_.cause = Cause::kSingularity;
  } else if (why_.speed->needed_rad_s > why_.speed->allowed_rad_s) {
    why_.cause = Cause::kLimit;
  }
}

NeededSpeed PosesExplainer::NeededTo(size_t failing, const Singularities& distances) const {
  const double time_s = poses_[failing].time_s - poses_[failing - 1].time_s;
  const auto j = static_cast<size_t>(why_.error.joint);
  const double step = std::fabs(why_.solutions.front().joints[j] - why_.before[j]);
  return {why_.error.joint, step / time_s, request_.arm.joints()[j].velocity_rad_s.value,
          distances.smallest_singular_value};
}

}  // namespace

Explanation ExplainPoses(const Arm& arm, const std::vector<TimedPose>& poses, const Joints& near,
                         const InverseOptions& options) {
  Explanation why;
  why.before = near;
  if (const auto refused = RefusedTimes(poses)) {
    why.error = *refused;
    why.cause = Cause::kRequest;
    return why;
  }
  const PosesRequest request = {arm, near, options.step_bound_rad};
  const std::vector<Joints> passed = PassedOf(poses, request);
  if (passed.size() == poses.size()) {
    why.duration_s = poses.empty() ? 0 : poses.back().time_s - poses.front().time_s;
    return why;
  }
  const size_t failing = passed.size();
  if (failing > 0) why.before = passed.back();
  PosesExplainer(poses, request, why).Judge(failing);
  if (why.cause != Cause::kRequest && why.cause != Cause::kSolver) {
    why.changes = PosesChanges(poses, request, failing, why.cause);
  }
  return why;
}

}  // namespace qal
