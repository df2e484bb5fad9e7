#include <algorithm>
#include <cmath>

#include "../../kinematics/solve/judgement.h"
#include "../../kinematics/solve/pose_encoding.h"
#include "../../kinematics/solve/solver_functions.h"
#include "../model/exceptions.h"
#include "kinematics.h"
#include "solver_calls.h"

namespace qal {

namespace {

std::optional<Error> RefusedRequest(const Pose& pose, const Joints& near,
                                    const InverseOptions& options) {
  if (auto refused = RefusedPose(pose)) return refused;
  for (size_t j = 0; j < near.size(); ++j) {
    if (!std::isfinite(near[j])) return Error{Reason::kNotFinite, static_cast<int>(j), near[j]};
  }
  // Written so that NaN fails.
  if (!(options.step_bound_rad >= 0)) {
    return Error{Reason::kSetting, -1, options.step_bound_rad, 0, "step_bound_rad"};
  }
  return std::nullopt;
}

// `angle` and whole turns: of those within the limits the one nearest `near`; where none is within,
// the one nearest the limits.
double TakenOn(double angle, double near, const JointRange& range) {
  // Mostly no other turn is within the limits, wherever `near` is.
  constexpr double kTurn = 2 * kPi;
  const bool within = angle >= range.lower && angle <= range.upper;
  if (within && angle + kTurn > range.upper && angle - kTurn < range.lower) return angle;
  const auto turned = [angle](double turns) {
    // Without turns the solver's angle to the last digit.
    return turns == 0 ? angle : angle + turns * (2 * kPi);
  };
  double turns = std::round((near - angle) / (2 * kPi));
  // Behind each division one turn more, should its rounding have gone past the limit.
  if (turned(turns) > range.upper) turns = std::floor((range.upper - angle) / (2 * kPi));
  if (turned(turns) > range.upper) turns -= 1;
  if (turned(turns) < range.lower) turns = std::ceil((range.lower - angle) / (2 * kPi));
  if (turned(turns) < range.lower) turns += 1;
  const double least = turned(turns);
  const double below = turned(turns - 1);
  const bool outside = least > range.upper;
  return outside && range.lower - below < least - range.upper ? below : least;
}

Error RefusalOf(const Judgement& judgement, const Joints& joints, const Joints& near,
                const JointRange& range, double step_bound) {
  const auto j = static_cast<size_t>(judgement.joint);
  if (judgement.refusal == Refusal::kStepBound) {
    return {Reason::kStepBound, judgement.joint, std::fabs(joints[j] - near[j]), step_bound};
  }
  return {Reason::kJointRange, judgement.joint, joints[j],
          joints[j] < range.lower ? range.lower : range.upper};
}

// Judges a solver's solutions for one request.
class SolutionJudge {
 public:
  SolutionJudge(const Arm& arm, const Joints& near, double step_bound)
      : near_(near), step_bound_(step_bound) {
    for (size_t j = 0; j < near.size(); ++j) {
      ranges_[j] = {arm.joints()[j].lower_rad.value, arm.joints()[j].upper_rad.value};
    }
  }

  Candidate operator()(const double* solution) const {
    Candidate candidate = {};
    for (size_t j = 0; j < near_.size(); ++j) {
      if (!std::isfinite(solution[j])) {
        candidate.refusal = Error{Reason::kSolverFault, static_cast<int>(j), solution[j], 0,
                                  "a joint is no number"};
      }
      candidate.joints[j] = TakenOn(solution[j], near_[j], ranges_[j]);
      candidate.distance_rad += std::fabs(candidate.joints[j] - near_[j]);
    }
    if (candidate.refusal) return candidate;
    const Judgement judgement = Judge(candidate.joints.data(), near_.data(), step_bound_, ranges_);
    if (judgement.refusal != Refusal::kNone) {
      candidate.refusal =
          RefusalOf(judgement, candidate.joints, near_, ranges_[judgement.joint], step_bound_);
    }
    return candidate;
  }

 private:
  const Joints& near_;
  double step_bound_;
  JointRange ranges_[kJointCount] = {};
};

// Calls visit(candidate) with every solution of a pose, in the solver's order.
// @return how many; the errors of `Inverse`
template <class Visit>
Result<size_t> VisitCandidates(const Arm& arm, const Pose& pose, const Joints& near,
                               const InverseOptions& options, Visit visit) {
  if (const std::optional<Error> refused = RefusedRequest(pose, near, options)) return *refused;
  double eerot[9];
  double eetrans[3];
  const auto& [position, q] = pose;
  EncodePose({position.x, position.y, position.z}, {q.w, q.x, q.y, q.z}, eerot, eetrans);
  return CatchingSolver([&]() -> Result<size_t> {
    SolutionList solutions;
    if (!arm.functions().Inverse(eetrans, eerot, solutions)) return Error{Reason::kOutOfReach};
    const SolutionJudge judge(arm, near, options.step_bound_rad);
    size_t count = 0;
    solutions.ForEach([&](const double* joints) {
      visit(judge(joints));
      ++count;
    });
    if (count == 0) {
      return Error{Reason::kSolverFault, -1, 0, 0, "ComputeIk says solved, without six joints"};
    }
    return count;
  });
}

}  // namespace

std::optional<Error> RefusedPose(const Pose& pose) {
  const auto& [position, q] = pose;
  for (const double value : {position.x, position.y, position.z, q.w, q.x, q.y, q.z}) {
    if (!std::isfinite(value)) return Error{Reason::kNotFinite, -1, value};
  }
  const double length2 = SquareOfLength(q.w, q.x, q.y, q.z);
  if (!std::isfinite(length2)) return Error{Reason::kNotFinite, -1, length2};
  if (length2 >= kShortestQuaternion * kShortestQuaternion) return std::nullopt;
  return Error{Reason::kNotAnOrientation, -1, std::sqrt(length2)};
}

Result<std::vector<Candidate>> Inverse(const Arm& arm, const Pose& pose, const Joints& near,
                                       const InverseOptions& options) {
  constexpr size_t kMostOfFamily = 8;
  std::vector<Candidate> candidates;
  candidates.reserve(kMostOfFamily);
  const Result<size_t> count =
      VisitCandidates(arm, pose, near, options,
                      [&](Candidate&& candidate) { candidates.push_back(std::move(candidate)); });
  if (!count) return count.error();
  return candidates;
}

Result<State> Nearest(const Arm& arm, const Pose& pose, const Joints& near,
                      const InverseOptions& options) {
  // Admissible ones first, then by distance; the earlier one in a tie. A distance that is no number
  // is behind every other.
  const auto before = [](const Candidate& a, const Candidate& b) {
    if (a.refusal.has_value() != b.refusal.has_value()) return !a.refusal.has_value();
    return a.distance_rad < b.distance_rad ||
           (std::isnan(b.distance_rad) && !std::isnan(a.distance_rad));
  };
  std::optional<Candidate> nearest;
  const Result<size_t> count =
      VisitCandidates(arm, pose, near, options, [&](Candidate&& candidate) {
        if (!nearest || before(candidate, *nearest)) nearest = std::move(candidate);
      });
  if (!count) return count.error();
  if (nearest->refusal) return *nearest->refusal;
  return State{nearest->joints, pose};
}

}  // namespace qal
