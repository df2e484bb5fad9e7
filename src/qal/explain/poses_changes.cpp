#include "poses_changes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qal {

StepBounds BoundsTo(const std::vector<TimedPose>& poses, size_t i, const PosesRequest& request) {
  constexpr double kAny = std::numeric_limits<double>::infinity();
  if (i == 0) return {kAny, kAny, kAny, kAny, kAny, kAny};
  const double time_s = (poses[i].time_s - poses[i - 1].time_s) / request.speed;
  StepBounds bounds = StepBoundsOf(request.arm, 1, time_s);
  for (double& bound : bounds) bound = std::min(bound, request.step_bound_rad);
  return bounds;
}

std::vector<Joints> PassedOf(const std::vector<TimedPose>& poses, const PosesRequest& request) {
  std::vector<Joints> passed;
  Joints before = request.near;
  for (size_t i = 0; i < poses.size(); ++i) {
    const Pose& pose = poses[i].pose;
    const auto candidates =
        Inverse(request.arm, request.moved ? request.moved(pose) : pose, before);
    if (!candidates) break;
    const StepBounds bounds = BoundsTo(poses, i, request);
    const Candidate* nearest = nullptr;
    for (const Candidate& candidate : *candidates) {
      if (candidate.refusal || TooFar(candidate.joints, before, bounds)) continue;
      if (!nearest || candidate.distance_rad < nearest->distance_rad) nearest = &candidate;
    }
    if (!nearest) break;
    before = nearest->joints;
    passed.push_back(before);
  }
  return passed;
}

namespace {

class PosesChanger {
 public:
  PosesChanger(const std::vector<TimedPose>& poses, const PosesRequest& asked, size_t failing)
      : poses_(poses), asked_(asked), failing_(failing) {}

  std::optional<Change> Start() const;
  std::optional<Change> End() const;
  std::optional<Change> Speed() const;
  std::optional<Change> StepBound() const;
  std::optional<Change> Shift() const;
  std::optional<Change> Turn() const;

 private:
  bool Works(const PosesRequest& request) const {
    return PassedOf(poses_, request).size() == poses_.size();
  }
  PosesRequest Moved(std::function<Pose(const Pose&)> moved) const {
    PosesRequest request = asked_;
    request.moved = std::move(moved);
    return request;
  }
  PosesRequest Shifted(const Vector3& by) const {
    return Moved([by](const Pose& pose) { return ShiftedBy(pose, by); });
  }
  PosesRequest Turned(const Vector3& by) const {
    return Moved([by](const Pose& pose) { return TurnedBy(pose, by); });
  }
  // The failing pose by itself first: most of what is tried fails there again.
  bool Passes(const PosesRequest& request) const {
    const Pose pose = request.moved(poses_[failing_].pose);
    return Nearest(request.arm, pose, request.near).has_value() && Works(request);
  }
  Change Told(Change change, const PosesRequest& request, const Vector3& by) const {
    change.joints = PassedOf(poses_, request).front();
    change.pose = request.moved(poses_[failing_].pose);
    change.vector = FromVector(by);
    change.value = Length(by);
    return change;
  }

  const std::vector<TimedPose>& poses_;
  const PosesRequest& asked_;
  size_t failing_;
};

std::optional<Change> PosesChanger::Start() const {
  const Pose& first = poses_.front().pose;
  for (const Joints& joints : OtherSolutions(asked_.arm, first, asked_.near)) {
    PosesRequest request = asked_;
    request.near = joints;
    if (!Works(request)) continue;
    return Change{Change::Kind::kStart, SizeOf(joints, asked_.near), joints, first};
  }
  return std::nullopt;
}

std::optional<Change> PosesChanger::End() const {
  if (failing_ == 0) return std::nullopt;
  const double part = static_cast<double>(failing_) / static_cast<double>(poses_.size());
  return Change{Change::Kind::kEnd, 1 - part, {}, poses_[failing_ - 1].pose, {}, part};
}

std::optional<Change> PosesChanger::Speed() const {
  const auto speed = SmallestSlowdown([this](double part) {
    PosesRequest request = asked_;
    request.speed = part;
    return Works(request);
  });
  if (!speed) return std::nullopt;
  Change change = {Change::Kind::kSpeed, 1 - *speed};
  change.value = *speed;
  change.duration_s = (poses_.back().time_s - poses_.front().time_s) / *speed;
  return change;
}

std::optional<Change> PosesChanger::StepBound() const {
  const auto works = [this](double bound) {
    PosesRequest request = asked_;
    request.step_bound_rad = bound;
    return Works(request);
  };
  double holds = 2 * kPi;
  double fails = asked_.step_bound_rad;
  if (!(fails < holds) || !works(holds)) return std::nullopt;
  constexpr double kPerUnit = 1e4;
  while (holds - fails > 0.01 * holds) {
    const double middle = std::ceil((holds + fails) / 2 * kPerUnit) / kPerUnit;
    if (middle >= holds) break;
    (works(middle) ? holds : fails) = middle;
  }
  Change change = {Change::Kind::kStepBound, holds / (2 * kPi)};
  change.value = holds;
  return change;
}

std::optional<Change> PosesChanger::Shift() const {
  const Pose& pose = poses_[failing_].pose;
  const VectorSearch search = ShiftSearch(asked_.arm, pose);
  const auto by =
      SmallestVector(search, [this](const Vector3& tried) { return Passes(Shifted(tried)); });
  if (!by) return std::nullopt;
  return Told({Change::Kind::kShift, Length(*by)}, Shifted(*by), *by);
}

std::optional<Change> PosesChanger::Turn() const {
  const auto by =
      SmallestVector(TurnSearch(), [this](const Vector3& tried) { return Passes(Turned(tried)); });
  if (!by) return std::nullopt;
  return Told({Change::Kind::kOrientation, Length(*by) / kPi}, Turned(*by), *by);
}

}  // namespace

std::vector<Change> PosesChanges(const std::vector<TimedPose>& poses, const PosesRequest& asked,
                                 size_t failing, Cause cause) {
  const PosesChanger changer(poses, asked, failing);
  std::vector<Change> changes;
  const auto add = [&changes](const std::optional<Change>& change) {
    if (change) changes.push_back(*change);
  };
  add(changer.Start());
  add(changer.End());
  if (cause != Cause::kOutOfReach && cause != Cause::kJointRange) {
    add(changer.Speed());
    add(changer.StepBound());
  }
  add(changer.Shift());
  add(changer.Turn());
  Sort(changes);
  return changes;
}

}  // namespace qal
