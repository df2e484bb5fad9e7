#include "pose_judge.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "jacobian.h"
#include "measures.h"

namespace qal::ikcheck {

namespace {

Case CaseOf(const std::string& words, const IkRequest& request, const Joints& solution) {
  Case shown = ikcheck::CaseOf(words, request);
  shown.numbers.push_back({"solution", {solution.begin(), solution.end()}});
  return shown;
}

}  // namespace

PoseJudge::PoseResult PoseJudge::JudgePose(const IkRequest& request) {
  const IkAnswer answer = session_.Solve(request);
  if (!answer.returned()) return {};
  ++poses_;
  PoseResult result;
  // Where what it returns doesn't fit what it adds, that is found already.
  result.answered = result.complete = answer.found == (answer.added > 0);
  result.solved = answer.found && answer.added > 0;
  if (!result.solved) return result;
  ++solved_;
  solutions_ += answer.added;
  for (const Solution& given : answer.solutions) JudgeSolution(request, given, result);
  if (result.complete && !result.lax) JudgeDuplicates(request, result.solutions);
  return result;
}

void PoseJudge::JudgeSolution(const IkRequest& request, const Solution& given, PoseResult& result) {
  const Joints& joints = given.joints;
  const bool finite = AllFinite(joints);
  report_.Judge(Finding::kNonFiniteSolution, finite,
                [&] { return CaseOf("a solution", request, joints); });
  result.solutions.push_back(joints);
  const auto pose = finite ? session_.Forward(joints) : std::nullopt;
  if (!pose) {  // where it leads isn't known
    result.complete = false;
    return;
  }
  // A free joint may be read as anything.
  if (!given.free) JudgeRange(request, joints);
  const PoseDifference difference = Difference(*pose, request.pose);
  const double error = difference.Size();
  if (error >= kWrongSingularError) NoteFarOff(FrameOf(request.pose), FrameOf(*pose));
  // Looked at only where it makes a difference.
  const bool singular = error < kWrongSingularError && (error > kLooseError || given.free) &&
                        SmallestSingularValue(session_, joints) < kRegularValue;
  if (!JudgeError(request, given, difference, singular)) result.complete = false;
  if (singular && (given.free || error > kWrongError)) result.lax = true;
  result.error = std::max(result.error, error);
}

// Of those that follow each other, the ones that are turned: others would fit any fixed offset.
void PoseJudge::NoteFarOff(const Frame& asked, const Frame& met) {
  constexpr size_t kFrames = 100;
  constexpr double kTurnedRad = 0.1;
  ++far_off_;
  if (asked_.size() >= kFrames) return;
  if (!asked_.empty() && Offset(asked_.back(), asked).angle_rad < kTurnedRad) return;
  asked_.push_back(asked);
  met_.push_back(met);
}

// Whether a solution is right.
bool PoseJudge::JudgeError(const IkRequest& request, const Solution& given,
                           const PoseDifference& difference, bool singular) {
  const double error = difference.Size();
  const bool free = given.free;
  const bool right = error <= kWrongError || (singular && error < kWrongSingularError);
  const auto shown = [&] {
    return CaseOf(fmt::format("{}position off by {:.3g} m, matrix elements by {:.3g}",
                              free ? "with a joint that is free, read as 0: " : "",
                              difference.position_m, difference.element),
                  request, given.joints);
  };
  const bool free_fault = free && !(right && singular);
  report_.Judge(Finding::kFreeJoint, !free_fault, error, shown);
  report_.Judge(Finding::kFreeSingular, !free || free_fault || error > kWrongError, error, shown);
  report_.Judge(Finding::kWrongSolution, right || free, error, shown);
  report_.Judge(Finding::kLooseSingular, !right || error <= kWrongError, error, shown);
  report_.Judge(Finding::kLooseSolution, !right || singular || error <= kLooseError, error, shown);
  largest_error_ = std::max(largest_error_, error);
  if (!right) ++wrong_;
  return right;
}

void PoseJudge::JudgeRange(const IkRequest& request, const Joints& solution) {
  const auto [low, high] = std::minmax_element(solution.begin(), solution.end());
  const auto farthest = *high > -*low ? high : low;
  const double past = std::fabs(*farthest) - kPi;
  const auto shown = [&] {
    return CaseOf(
        fmt::format("joint {} at {:.17g} rad", farthest - solution.begin() + 1, *farthest), request,
        solution);
  };
  report_.Judge(Finding::kOutOfRange, past <= kPastPiRad, past, shown);
  report_.Judge(Finding::kMinusPi, past > kPastPiRad || (*farthest > -kPi && *farthest <= kPi),
                shown);
}

void PoseJudge::JudgeDuplicates(const IkRequest& request, const std::vector<Joints>& solutions) {
  for (size_t i = 0; i < solutions.size(); ++i) {
    const bool again = std::any_of(
        solutions.begin(), solutions.begin() + static_cast<std::ptrdiff_t>(i),
        [&](const Joints& other) { return Difference(other, solutions[i]) < kSameRad; });
    report_.Judge(Finding::kDuplicates, !again,
                  [&] { return CaseOf("a solution", request, solutions[i]); });
  }
}

// A pose made from joints that are to be found again.
// @param smallest     singular value of the Jacobian
// @param self_motion  they may come back moved by it
void PoseJudge::JudgeOriginal(const IkRequest& original, double smallest,
                              const std::optional<Joints>& self_motion, const PoseResult& result) {
  const bool regular = smallest >= kRegularValue;
  const auto shown = [&](const std::string& words) {
    return ikcheck::CaseOf(fmt::format("{}, smallest singular value {:.3g}", words, smallest),
                           original);
  };
  report_.Judge(regular ? Finding::kUnsolved : Finding::kUnsolvedSingular, result.solved,
                [&] { return shown("no solution"); });
  if (!result.solved || !result.complete) return;
  // Such branches take other joints for these, and that is found already.
  if (!regular && result.lax) return;
  if (smallest < kSingularValue && !self_motion) return;

  double nearest = 2 * kPi;
  for (const Joints& solution : result.solutions) {
    nearest = std::min(nearest, self_motion ? OffLine(solution, *original.from, *self_motion)
                                            : Difference(solution, *original.from));
  }
  // What is left of an error of the pose comes back in the joints divided by the singular value.
  const double worst = self_motion ? kRegularValue : std::min(smallest, kRegularValue);
  const bool found = nearest <= std::max(kLooseError, result.error) / worst;
  if (!found) ++missed_;
  report_.Judge(regular ? Finding::kMissedJoints : Finding::kMissedSingular, found, nearest,
                [&] { return shown(fmt::format("nearest solution {:.3g} rad away", nearest)); });
}

void PoseJudge::JudgeJoints(const Joints& joints, bool self_motion) {
  const auto pose = session_.Forward(joints);
  if (!pose) return;
  const Jacobian jacobian = JacobianAt(session_, joints);
  const double smallest = SmallestSingularValue(jacobian);
  if (std::isnan(smallest)) return;
  const IkRequest original = {*pose, joints};
  const PoseResult result = JudgePose(original);
  if (!result.answered) return;
  JudgeOriginal(original, smallest,
                self_motion && smallest < kSingularValue ? SelfMotion(jacobian) : std::nullopt,
                result);
}

void PoseJudge::Fill(Row& row) {
  row.values["poses"] = poses_;
  row.values["solved"] = solved_;
  row.values["solutions"] = solutions_;
  row.values["wrong"] = wrong_;
  row.values["missed"] = missed_;
  row.values["largest_error"] = largest_error_;
  if (2 * far_off_ > solutions_) {
    report_.Explain(Finding::kWrongSolution, FixedOffset("ComputeIk's, as ComputeFk sees it,",
                                                         asked_, met_, session_.reach));
  }
}

}  // namespace qal::ikcheck
