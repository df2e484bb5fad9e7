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

// What a call added that threw or returned false are no solutions.
size_t SolutionCount(const IkAnswer& answer) {
  return answer.outcome == Outcome::kReturned && answer.found ? answer.kept : 0;
}

}  // namespace

std::vector<PoseJudge::PoseResult> PoseJudge::JudgePoses(const std::vector<IkRequest>& requests) {
  const auto answers = session_.Solve(requests);
  std::vector<Joints> all;
  for (const IkAnswer& answer : answers) {
    for (size_t k = 0; k < SolutionCount(answer); ++k) {
      all.push_back(answer.solutions[k].joints);
    }
  }
  const auto poses = session_.Forward(all);

  std::vector<PoseResult> results(requests.size());
  const FkAnswer* forward = poses.begin();
  for (size_t i = 0; i < requests.size(); ++i) {
    const IkAnswer& answer = answers[i];
    if (answer.outcome != Outcome::kReturned) continue;
    PoseResult& result = results[i];
    result = {true, answer.found && answer.added > 0};
    for (size_t k = 0; k < SolutionCount(answer); ++k) {
      const Solution& solution = answer.solutions[k];
      const double error = JudgeSolution(requests[i], solution, *forward++);
      result.error = std::max(result.error, error);
      result.solutions.push_back(solution.joints);
    }
    JudgeDuplicates(requests[i], result.solutions);
    ++poses_;
    if (result.solved) ++solved_;
    if (result.solved) solutions_ += answer.added;
  }
  return results;
}

double PoseJudge::JudgeSolution(const IkRequest& request, const Solution& given,
                                const FkAnswer& forward) {
  Report& report = session_.report;
  const Joints& solution = given.joints;
  const bool finite = std::all_of(solution.begin(), solution.end(),
                                  [](double joint) { return std::isfinite(joint); });
  report.Judge(Finding::kNonFiniteSolution, finite,
               [&] { return CaseOf("a solution", request, solution); });
  report.Judge(Finding::kFreeJoint, !given.free,
               [&] { return CaseOf("a solution", request, solution); });
  if (!finite) return 0.0;

  const auto [low, high] = std::minmax_element(solution.begin(), solution.end());
  const double past = std::max(*high, -*low) - kPi;
  report.Judge(Finding::kOutOfRange, past <= kPastPiRad, past,
               [&] { return CaseOf("a solution", request, solution); });
  report.Judge(Finding::kMinusPi, past > kPastPiRad || (*low > -kPi && *high <= kPi),
               [&] { return CaseOf("a solution", request, solution); });

  if (forward.outcome != Outcome::kReturned) return 0.0;
  const double error = Difference(forward.pose, request.pose, session_.reach);
  const bool right = error <= kWrongError;  // NaN isn't
  report.Judge(Finding::kWrongSolution, right, error,
               [&] { return CaseOf(fmt::format("off by {:.3g}", error), request, solution); });
  if (!right) {
    ++wrong_;
    return 0.0;
  }
  largest_error_ = std::max(largest_error_, error);
  return error;
}

void PoseJudge::JudgeDuplicates(const IkRequest& request, const std::vector<Joints>& solutions) {
  for (size_t i = 0; i < solutions.size(); ++i) {
    const bool again = std::any_of(
        solutions.begin(), solutions.begin() + static_cast<std::ptrdiff_t>(i),
        [&](const Joints& other) { return Difference(other, solutions[i]) < kSameRad; });
    session_.report.Judge(Finding::kDuplicates, !again,
                          [&] { return CaseOf("a solution", request, solutions[i]); });
  }
}

void PoseJudge::JudgeOriginal(const Original& original, const PoseResult& result) {
  Report& report = session_.report;
  const double smallest = original.smallest;
  const bool regular = smallest >= kRegularValue;
  const auto shown = [&](const std::string& words) {
    return ikcheck::CaseOf(fmt::format("{}, smallest singular value {:.3g}", words, smallest),
                           original.request);
  };
  report.Judge(regular ? Finding::kUnsolved : Finding::kUnsolvedSingular, result.solved,
               [&] { return shown("no solution"); });
  if (!result.solved || (smallest < kSingularValue && !original.self_motion)) return;
  if (regular) {
    report.Judge(Finding::kLooseSolution, result.error <= kLooseError, result.error,
                 [&] { return shown(fmt::format("a solution off by {:.3g}", result.error)); });
  }

  double nearest = 2 * kPi;
  for (const Joints& solution : result.solutions) {
    const Joints& from = *original.request.from;
    nearest =
        std::min(nearest, original.self_motion ? OffLine(solution, from, *original.self_motion)
                                               : Difference(solution, from));
  }
  // What is left of an error of the pose comes back in the joints divided by the singular value.
  const double worst = original.self_motion ? kRegularValue : std::min(smallest, kRegularValue);
  const bool found = nearest <= kLooseError / worst;
  if (!found) ++missed_;
  report.Judge(regular ? Finding::kMissedJoints : Finding::kMissedSingular, found, nearest,
               [&] { return shown(fmt::format("nearest solution {:.3g} rad away", nearest)); });
}

void PoseJudge::JudgeJoints(const std::vector<Joints>& joints, bool self_motions) {
  const auto poses = session_.Forward(joints);
  const std::vector<Jacobian> jacobians = Jacobians(session_, joints);
  std::vector<Original> originals;
  for (size_t i = 0; i < joints.size(); ++i) {
    const double smallest = SmallestSingularValue(jacobians[i]);
    if (poses[i].outcome != Outcome::kReturned || std::isnan(smallest)) continue;
    originals.push_back({{poses[i].pose, joints[i]}, smallest, std::nullopt});
    if (self_motions && smallest < kSingularValue) {
      originals.back().self_motion = SelfMotion(jacobians[i]);
    }
  }
  std::vector<IkRequest> requests;
  for (const Original& original : originals) requests.push_back(original.request);
  const std::vector<PoseResult> results = JudgePoses(requests);
  for (size_t i = 0; i < results.size(); ++i) {
    if (results[i].answered) JudgeOriginal(originals[i], results[i]);
  }
}

void PoseJudge::Fill(Row& row) const {
  row.values["poses"] = poses_;
  row.values["solved"] = solved_;
  row.values["solutions"] = solutions_;
  row.values["wrong"] = wrong_;
  row.values["missed"] = missed_;
  row.values["largest_error"] = largest_error_;
}

}  // namespace qal::ikcheck
