#include <algorithm>
#include <cmath>
#include <limits>

#include "../plan/joint_path.h"
#include "causes.h"
#include "explain.h"

namespace qal {

namespace {

// A pose is tried in no time, and within a step bound there are few that work.
VectorSearch Closer(VectorSearch search) {
  search.widest /= 4;
  return search;
}

class PoseChanger {
 public:
  PoseChanger(const Arm& arm, const Pose& pose, const Joints& near, const InverseOptions& options)
      : arm_(arm), pose_(pose), near_(near), options_(options) {}

  std::vector<Change> All(const std::vector<ExplainedSolution>& solutions) const;

 private:
  std::optional<Joints> Solved(const Pose& pose) const {
    const auto solved = qal::Nearest(arm_, pose, near_, options_);
    return solved ? std::optional(solved->joints) : std::nullopt;
  }
  std::optional<Change> Shift() const;
  std::optional<Change> Tool(const Vector3& shift) const;
  std::optional<Change> Turn() const;
  void AddNearer(const std::vector<ExplainedSolution>& solutions,
                 std::vector<Change>& changes) const;

  const Arm& arm_;
  const Pose& pose_;
  const Joints& near_;
  const InverseOptions& options_;
};

std::optional<Change> PoseChanger::Shift() const {
  const auto shift = SmallestVector(Closer(ShiftSearch(arm_, pose_)), [&](const Vector3& by) {
    return Solved(ShiftedBy(pose_, by)).has_value();
  });
  if (!shift) return std::nullopt;
  const Pose shifted = ShiftedBy(pose_, *shift);
  return Change{Change::Kind::kShift, Length(*shift), *Solved(shifted), shifted,
                FromVector(*shift)};
}

// To have the tool where the shifted pose has it, as seen from the flange.
std::optional<Change> PoseChanger::Tool(const Vector3& shift) const {
  const Vector3 by = ToolMoveOf(shift, pose_);
  const auto arm = WithToolMoved(arm_, by);
  if (!arm) return std::nullopt;
  const auto solved = qal::Nearest(*arm, pose_, near_, options_);
  if (!solved) return std::nullopt;
  return Change{Change::Kind::kTool, Length(by), solved->joints, pose_, FromVector(by)};
}

std::optional<Change> PoseChanger::Turn() const {
  const auto turn = SmallestVector(Closer(TurnSearch()), [&](const Vector3& by) {
    return Solved(TurnedBy(pose_, by)).has_value();
  });
  if (!turn) return std::nullopt;
  const Pose turned = TurnedBy(pose_, *turn);
  const double angle = Length(*turn);
  return Change{Change::Kind::kOrientation, angle / kPi, *Solved(turned), turned, {}, angle};
}

// Solutions that are within the joints' range, but too far.
void PoseChanger::AddNearer(const std::vector<ExplainedSolution>& solutions,
                            std::vector<Change>& changes) const {
  constexpr double kNone = std::numeric_limits<double>::infinity();
  const auto farthest = [this](const ExplainedSolution& solution) {
    const bool in_range = !solution.refusal || solution.refusal->reason == Reason::kStepBound;
    return in_range ? LargestDifference(solution.joints, near_) : kNone;
  };
  const auto nearest =
      std::min_element(solutions.begin(), solutions.end(),
                       [&](const auto& a, const auto& b) { return farthest(a) < farthest(b); });
  if (nearest == solutions.end() || farthest(*nearest) == kNone) return;
  const double bound = std::ceil(farthest(*nearest) * 1e4) / 1e4;
  const double size = SizeOf(nearest->joints, near_);
  Change wider = {Change::Kind::kStepBound, size, nearest->joints, pose_};
  wider.value = bound;
  if (qal::Nearest(arm_, pose_, near_, {bound})) changes.push_back(wider);
  if (qal::Nearest(arm_, pose_, nearest->joints, options_)) {
    changes.push_back({Change::Kind::kStart, size, nearest->joints, pose_});
  }
}

std::vector<Change> PoseChanger::All(const std::vector<ExplainedSolution>& solutions) const {
  std::vector<Change> changes;
  if (const auto shift = Shift()) {
    changes.push_back(*shift);
    if (const auto tool = Tool(ToVector(shift->vector))) changes.push_back(*tool);
  }
  if (const auto turn = Turn()) changes.push_back(*turn);
  AddNearer(solutions, changes);
  Sort(changes);
  return changes;
}

}  // namespace

Explanation ExplainPose(const Arm& arm, const Pose& pose, const Joints& near,
                        const InverseOptions& options) {
  Explanation why;
  why.before = near;
  const auto nearest = Nearest(arm, pose, near, options);
  const auto candidates = Inverse(arm, pose, near, options);
  if (!candidates) {
    why.error = candidates.error();
    why.cause = CauseOf(why.error.reason);
    if (why.cause != Cause::kOutOfReach) return why;
    why.way_back = WayBack(arm, pose, near);
  }
  const double bound = options.step_bound_rad;
  why.solutions = SolutionsOf(arm, pose, near, {bound, bound, bound, bound, bound, bound});
  why.point = FailingPoint{pose};
  if (nearest) {
    why.point.reset();
    return why;
  }
  if (!why.solutions.empty()) {
    // Within range but too far says more than out of range.
    const auto far = std::find_if(
        why.solutions.begin(), why.solutions.end(), [](const ExplainedSolution& solution) {
          return solution.refusal && solution.refusal->reason == Reason::kStepBound;
        });
    why.error = *(far != why.solutions.end() ? far : why.solutions.begin())->refusal;
    why.cause = CauseOf(why.error.reason);
  }
  why.changes = PoseChanger(arm, pose, near, options).All(why.solutions);
  return why;
}

}  // namespace qal
