#include "causes.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "../model/chain.h"
#include "../model/rotations.h"
#include "../plan/joint_limits.h"
#include "../plan/joint_path.h"
#include "../plan/tool_path.h"

namespace qal {

Cause CauseOf(Reason reason) {
  switch (reason) {
    case Reason::kNone:
      return Cause::kNone;
    case Reason::kOutOfReach:
      return Cause::kOutOfReach;
    case Reason::kJointRange:
      return Cause::kJointRange;
    case Reason::kStepBound:
    case Reason::kConfiguration:
      return Cause::kStepBound;
    case Reason::kSingularity:
      return Cause::kSingularity;
    case Reason::kMotorSpeed:
    case Reason::kAccelerationTooLow:
    case Reason::kEndRate:
      return Cause::kLimit;
    case Reason::kNoPose:
    case Reason::kSolverFault:
    case Reason::kSolverThrows:
      return Cause::kSolver;
    default:
      return Cause::kRequest;
  }
}

StepBounds StepBoundsOf(const Arm& arm, double velocity_scale, double time_s) {
  StepBounds bounds;
  for (size_t j = 0; j < bounds.size(); ++j) {
    bounds[j] = arm.joints()[j].velocity_rad_s.value * velocity_scale * time_s;
  }
  return bounds;
}

std::optional<Error> TooFar(const Joints& joints, const Joints& before, const StepBounds& bounds) {
  // A step that is as long as it may be, but for rounding.
  double most = 1 + 1e-9;
  std::optional<Error> worst;
  for (size_t j = 0; j < joints.size(); ++j) {
    const double step = std::fabs(joints[j] - before[j]);
    if (!(step > most * bounds[j])) continue;
    most = step / bounds[j];
    worst = Error{Reason::kStepBound, static_cast<int>(j), step, bounds[j]};
  }
  return worst;
}

std::vector<ExplainedSolution> SolutionsOf(const Arm& arm, const Pose& pose, const Joints& before,
                                           const StepBounds& bounds) {
  std::vector<ExplainedSolution> solutions;
  const auto candidates = Inverse(arm, pose, before);
  if (!candidates) return solutions;
  for (const auto& [joints, distance_rad, refusal] : *candidates) {
    solutions.push_back({joints, BranchOf(arm, joints), distance_rad,
                         refusal ? refusal : TooFar(joints, before, bounds)});
  }
  std::stable_sort(solutions.begin(), solutions.end(),
                   [](const auto& a, const auto& b) { return a.distance_rad < b.distance_rad; });
  return solutions;
}

VectorSearch ShiftSearch(const Arm& arm, const Pose& pose, double shortest_m) {
  const auto zero = Forward(arm, {});
  const Vector3 base = ToVector(arm.base().position);
  const double to_zero = zero ? Length(ToVector(zero->position) - base) : 0;
  const double size = to_zero > 0 ? to_zero : 1;
  const Vector3 home = base - ToVector(pose.position);
  // To the other side of the arm, from anywhere but where nobody would put a pose.
  const double longest = std::min(Length(home), 20 * size) + size;
  return {shortest_m, longest, size / 4, 1e5, {home}};
}

VectorSearch TurnSearch() { return {0.005, kPi, kPi / 4, 1e4}; }

Pose TurnedBy(const Pose& pose, const Vector3& rotation) {
  const double angle = Length(rotation);
  if (!(angle > 0)) return pose;
  return {pose.position, RotationQuat((1 / angle) * rotation, angle) * pose.orientation};
}

Pose ShiftedBy(const Pose& pose, const Vector3& shift) {
  return {FromVector(ToVector(pose.position) + shift), pose.orientation};
}

Result<Arm> WithToolMoved(const Arm& arm, const Vector3& by) {
  Transform move;
  move.position = FromVector(by);
  return arm.WithTool(arm.tool() * move);
}

Vector3 ToolMoveOf(const Vector3& shift, const Pose& pose) {
  return Transposed(FrameOf(pose).rotation) * (-1.0 * shift);
}

std::optional<Vec3> WayBack(const Arm& arm, const Pose& pose, const Joints& near) {
  const auto shift = SmallestVector(ShiftSearch(arm, pose, 1e-5), [&](const Vector3& by) {
    return Nearest(arm, ShiftedBy(pose, by), near).has_value();
  });
  if (!shift) return std::nullopt;
  return FromVector(*shift);
}

std::optional<double> SmallestSlowdown(const std::function<bool(double part)>& works) {
  constexpr double kLeast = 1e-5;
  double holds = 0.5;
  while (!works(holds)) {
    holds /= 2;
    if (holds < kLeast) return std::nullopt;
  }
  double fails = 2 * holds;
  for (int i = 0; i < 6; ++i) {
    const double middle = (holds + fails) / 2;
    (works(middle) ? holds : fails) = middle;
  }
  return holds;
}

void Sort(std::vector<Change>& changes) {
  std::stable_sort(changes.begin(), changes.end(),
                   [](const Change& a, const Change& b) { return a.size < b.size; });
}

double SizeOf(const Joints& a, const Joints& b) { return LargestDifference(a, b) / (2 * kPi); }

std::vector<Joints> OtherSolutions(const Arm& arm, const Pose& pose, const Joints& near) {
  const double all = std::numeric_limits<double>::infinity();
  std::vector<Joints> others;
  const auto add = [&](const Joints& joints) {
    // Nearer than this are the same joints.
    constexpr double kSameRad = 1e-3;
    const auto same = [&joints](const Joints& other) {
      return LargestDifference(joints, other) < kSameRad;
    };
    if (RefusedJoints(arm, joints) || same(near)) return;
    if (std::none_of(others.begin(), others.end(), same)) others.push_back(joints);
  };
  for (const ExplainedSolution& solution :
       SolutionsOf(arm, pose, near, {all, all, all, all, all, all})) {
    add(solution.joints);
    for (size_t j = 0; j < near.size(); ++j) {
      for (const double turn : {-2 * kPi, 2 * kPi}) {
        Joints turned = solution.joints;
        turned[j] += turn;
        add(turned);
      }
    }
  }
  std::stable_sort(others.begin(), others.end(), [&near](const Joints& a, const Joints& b) {
    return LargestDifference(a, near) < LargestDifference(b, near);
  });
  return others;
}

}  // namespace qal
