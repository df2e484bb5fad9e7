#include "pose_judge.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "frame_offset.h"
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

std::vector<PoseJudge::PoseResult> PoseJudge::JudgePoses(const std::vector<IkRequest>& requests) {
  const auto answers = session_.Solve(requests);
  std::vector<PoseResult> results(requests.size());
  std::vector<Found> all;
  for (size_t i = 0; i < requests.size(); ++i) {
    const IkAnswer& answer = answers[i];
    if (answer.outcome != Outcome::kReturned) continue;
    const size_t kept = answer.found ? answer.kept : 0;
    // Where what it returns doesn't fit what it adds, that is found already.
    const bool fits = answer.found == (answer.added > 0);
    results[i] = {fits, answer.found && answer.added > 0, fits && kept == answer.added};
    for (size_t k = 0; k < kept; ++k) all.push_back({&requests[i], answer.solutions[k]});
    ++poses_;
    if (results[i].solved) ++solved_;
    if (results[i].solved) solutions_ += answer.added;
  }
  Follow(all);
  const std::string offset = CommonOffset(all);
  for (const Found& found : all) {
    PoseResult& result = results[static_cast<size_t>(found.request - requests.data())];
    if (!JudgeSolution(found, offset)) result.complete = false;
    const double error = found.error ? found.error->Size() : 0.0;
    result.error = std::max(result.error, error);
    if (found.singular && (found.given.free || error > kWrongError)) result.lax = true;
    result.solutions.push_back(found.given.joints);
  }
  for (size_t i = 0; i < results.size(); ++i) {
    if (results[i].complete && !results[i].lax) JudgeDuplicates(requests[i], results[i].solutions);
  }
  return results;
}

void PoseJudge::Follow(std::vector<Found>& all) {
  std::vector<Joints> joints;
  for (const Found& found : all) joints.push_back(found.given.joints);
  const auto poses = session_.Forward(joints);
  std::vector<Found*> doubtful;
  joints.clear();
  for (size_t k = 0; k < all.size(); ++k) {
    Found& found = all[k];
    if (poses[k].outcome != Outcome::kReturned || !AllFinite(found.given.joints)) continue;
    found.error = Difference(poses[k].pose, found.request->pose);
    found.leads_to = poses[k].pose;
    const double error = found.error->Size();
    if (error >= kWrongSingularError || (error <= kLooseError && !found.given.free)) continue;
    doubtful.push_back(&found);
    joints.push_back(found.given.joints);
  }
  const std::vector<double> smallest = SmallestSingularValues(session_, joints);
  for (size_t k = 0; k < doubtful.size(); ++k) doubtful[k]->singular = smallest[k] < kRegularValue;
}

std::string PoseJudge::CommonOffset(const std::vector<Found>& all) const {
  std::vector<Frame> inverse;
  std::vector<Frame> forward;
  for (const Found& found : all) {
    if (!found.error || !(found.error->Size() >= kWrongSingularError)) continue;
    inverse.push_back(FrameOf(found.request->pose));
    forward.push_back(FrameOf(found.leads_to));
  }
  if (2 * inverse.size() <= all.size()) return "";
  return FixedOffset("ComputeIk's, as ComputeFk sees it,", inverse, forward, session_.reach);
}

bool PoseJudge::JudgeSolution(const Found& found, const std::string& offset) {
  Report& report = session_.report;
  const Joints& solution = found.given.joints;
  const bool finite = AllFinite(solution);
  report.Judge(Finding::kNonFiniteSolution, finite,
               [&] { return CaseOf("a solution", *found.request, solution); });
  if (!found.error) return false;
  // A free joint may be read as anything.
  if (!found.given.free) JudgeRange(*found.request, solution);

  const double error = found.error->Size();
  const bool right = error <= kWrongError || (found.singular && error < kWrongSingularError);
  const bool free = found.given.free;
  const auto shown = [&] {
    return CaseOf(fmt::format("{}position off by {:.3g} m, matrix elements by {:.3g}{}",
                              free ? "with a joint that is free, read as 0: " : "",
                              found.error->position_m, found.error->element, offset),
                  *found.request, solution);
  };
  const bool free_fault = free && !(right && found.singular);
  report.Judge(Finding::kFreeJoint, !free_fault, error, shown);
  report.Judge(Finding::kFreeSingular, !free || free_fault || error > kWrongError, error, shown);
  report.Judge(Finding::kWrongSolution, right || free, error, shown);
  report.Judge(Finding::kLooseSingular, !right || error <= kWrongError, error, shown);
  report.Judge(Finding::kLooseSolution, !right || found.singular || error <= kLooseError, error,
               shown);
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
  session_.report.Judge(Finding::kOutOfRange, past <= kPastPiRad, past, shown);
  session_.report.Judge(Finding::kMinusPi,
                        past > kPastPiRad || (*farthest > -kPi && *farthest <= kPi), shown);
}

void PoseJudge::JudgeDuplicates(const IkRequest& request, const std::vector<Joints>& solutions) {
  for (size_t i = 0; i < solutions.size(); ++i) {
    const bool again =
        std::any_of(solutions.begin(), solutions.begin() + static_cast<std::ptrdiff_t>(i),
                    [&](const Joints& other) { return Same(other, solutions[i], kSameRad); });
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
  if (!result.solved || !result.complete) return;
  // Such branches take other joints for these, and that is found already.
  if (!regular && result.lax) return;
  if (smallest < kSingularValue && !original.self_motion) return;

  double nearest = 2 * kPi;
  for (const Joints& solution : result.solutions) {
    const Joints& from = *original.request.from;
    nearest =
        std::min(nearest, original.self_motion ? OffLine(solution, from, *original.self_motion)
                                               : Difference(solution, from));
  }
  // What is left of an error of the pose comes back in the joints divided by the singular value.
  const double worst = original.self_motion ? kRegularValue : std::min(smallest, kRegularValue);
  const bool found = nearest <= std::max(kLooseError, result.error) / worst;
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
