#include "session.h"

#include <fmt/format.h>

#include <cmath>

#include "elf_file.h"
#include "measures.h"

namespace qal::ikcheck {

Case CaseOf(const std::string& words, const Joints& joints) {
  return {words, {{"joints", {joints.begin(), joints.end()}}}};
}

Case CaseOf(const std::string& words, const IkRequest& request) {
  Case shown{words};
  if (request.from) shown = CaseOf(words, *request.from);
  const Pose& pose = request.pose;
  shown.numbers.push_back({"eetrans", {pose.position.data(), pose.position.data() + 3}});
  shown.numbers.push_back({"eerot", {pose.rotation.data(), pose.rotation.data() + 9}});
  return shown;
}

Session::Session(const Options& options_in, Exchange& exchange, double reach_in)
    : options(options_in),
      functions(ExportedFunctions(options.library)),
      reach(reach_in),
      exchange_(exchange),
      engine_(options.seed) {
  Run("when loaded and queried",
      [this](const Solver&) { solver_ = Solver::Load(options.library); });
}

void Session::Run(const char* what, const std::function<void(const Solver&)>& calls) {
  exchange_.NoteCall(what);
  calls(solver_);
  JudgeProcess([&](const std::string& words) { return Case{what + (": " + words)}; });
}

std::optional<Pose> Session::Forward(const Joints& joints) {
  const auto case_of = [&](const std::string& words) {
    return CaseOf("ComputeFk: " + words, joints);
  };
  exchange_.NoteCall("ComputeFk", &joints);
  const FkAnswer answer = solver_.Forward(joints);
  // There is no right answer to joints that aren't finite.
  const bool finite_joints = AllFinite(joints);
  JudgeEnd(answer, finite_joints, case_of);
  if (!answer.returned()) return std::nullopt;
  if (!finite_joints) return answer.pose;

  const bool finite = AllFinite(answer.pose);
  const double off = OffRotation(answer.pose.rotation);
  const bool pose = finite && off <= kLooseError;
  report.Judge(Finding::kForwardNotPose, pose, finite ? off : std::nan(""), [&] {
    return case_of(finite ? fmt::format("products of its columns off by {:.3g}", off)
                          : "not finite");
  });
  return pose ? std::optional(answer.pose) : std::nullopt;
}

IkAnswer Session::Solve(const IkRequest& request) {
  const auto case_of = [&](const std::string& words) {
    return CaseOf("ComputeIk: " + words, request);
  };
  exchange_.NoteCall("ComputeIk", request.from ? &*request.from : nullptr, &request.pose);
  IkAnswer answer = solver_.Solve(request.pose, request.standing);
  JudgeEnd(answer, AllFinite(request.pose), case_of);
  if (!answer.returned()) return answer;
  if (answer.added > 0) JudgeLayout(answer, case_of);
  // What a list that isn't empty makes of the result is judged by a check of its own.
  if (request.standing > 0) return answer;
  report.Judge(Finding::kAppendsOnFailure, answer.found || answer.added == 0, [&] {
    return CaseOf(fmt::format("returned false, added {}", answer.added), request);
  });
  report.Judge(Finding::kTrueWithoutSolution, !answer.found || answer.added > 0,
               [&] { return CaseOf("returned true, added nothing", request); });
  return answer;
}

void Session::JudgeLayout(const IkAnswer& answer, const CaseMaker& case_of) {
  constexpr size_t kPolymorphicBytes = 6 * 32;
  report.Judge(Finding::kSolutionLayout, answer.odd_bytes == 0, [&] {
    return case_of(
        fmt::format("a solution of {} bytes{}", answer.odd_bytes,
                    answer.odd_bytes == kPolymorphicBytes
                        ? ": six entries of 32, so the solver was built with a header of "
                          "late 0x1000004b or after; build it again with an earlier one"
                        : ""));
  });
  if (answer.odd_bytes > 0) throw GivenUp("its solutions can't be read");
}

void Session::JudgeEnd(const CallEnd& end, bool finite, const CaseMaker& case_of) {
  report.Passed(Finding::kCrash);
  report.Passed(Finding::kExit);
  report.Judge(Finding::kHang, end.outcome != CallEnd::Outcome::kEndless,
               [&] { return case_of("adds solutions without end"); });
  report.Judge(finite ? Finding::kException : Finding::kThrowsNonFinite,
               end.outcome != CallEnd::Outcome::kThrew,
               [&] { return case_of(fmt::format("threw \"{}\"", end.what)); });
  report.Judge(Finding::kWritesOutside, !end.wrote_outside,
               [&] { return case_of("wrote to its arguments, or to memory beside them"); });
  JudgeProcess(case_of);
}

// What a call has done to the process.
void Session::JudgeProcess(const CaseMaker& case_of) {
  const bool first = exchange_.HasOutput() && report.Count(Finding::kPrints) == 0;
  report.Judge(Finding::kPrints, !first, [&] {
    return case_of(fmt::format("wrote \"{}\"", exchange_.Output().substr(0, 200)));
  });
  const std::string odd = OddFloatingPointMode();
  report.Judge(Finding::kFloatingPoint, odd.empty(), [&] { return case_of("changed: " + odd); });
  // What is judged after it is right, and the next call to be seen.
  if (!odd.empty()) ResetFloatingPointMode();
}

void Session::JudgeState() {
  const std::string changed = Differences(state_before_, CurrentProcessState());
  report.Judge(Finding::kProcess, changed.empty(), [&] { return Case{"changed: " + changed}; });
}

Joints Session::RandomJoints() {
  Joints joints;
  for (double& joint : joints) joint = kPi * Random();
  return joints;
}

std::vector<Joints> Session::RandomJoints(size_t count) {
  std::vector<Joints> sets(count);
  for (Joints& joints : sets) joints = RandomJoints();
  return sets;
}

std::vector<IkRequest> Session::RandomPoses(size_t count) {
  std::vector<IkRequest> requests;
  for (const Joints& joints : RandomJoints(count)) {
    if (const auto pose = Forward(joints)) requests.push_back({*pose, joints});
  }
  return requests;
}

}  // namespace qal::ikcheck
