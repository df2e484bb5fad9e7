#include "session.h"

#include <fmt/format.h>

#include <cmath>
#include <cstring>

#include "../../io/error.h"
#include "measures.h"

namespace qal::ikcheck {

namespace {

// So many steps of a run that don't return, and the rest of it is left out. A hang costs its
// timeout, a crash next to nothing.
constexpr size_t kCrashesPerRun = 10;
constexpr size_t kHangsPerRun = 2;
constexpr size_t kHangsInAll = 15;

struct RunEnded {};

struct LoadFailure {
  char text[1024];
};

Finding FindingOf(Loss::Kind kind) {
  switch (kind) {
    case Loss::Kind::kCrash:
      return Finding::kCrash;
    case Loss::Kind::kExit:
      return Finding::kExit;
    case Loss::Kind::kHang:
      break;
  }
  return Finding::kHang;
}

}  // namespace

Case CaseOf(const std::string& words, const Joints& joints) {
  return {words, {{"joints", {joints.begin(), joints.end()}}}};
}

Case CaseOf(const std::string& words, const IkRequest& request) {
  Case shown{words};
  if (request.from) shown = CaseOf(words, *request.from);
  const Pose& pose = request.pose;
  shown.numbers.push_back({"eetrans", {pose.position, pose.position + 3}});
  shown.numbers.push_back({"eerot", {pose.rotation, pose.rotation + 9}});
  return shown;
}

Session::Session(const Options& options_in, Report& report_in)
    : options(options_in),
      report(report_in),
      library_(options.library),
      sandbox_(options.timeout_s),
      engine_(options.seed) {}

void Session::Run(size_t count, const std::function<void(const Solver&, size_t)>& step,
                  const std::function<Case(size_t, std::string)>& case_of) {
  size_t crashes = 0;
  size_t hangs = 0;
  const auto on_loss = [&](const Loss& loss) {
    report.Judge(FindingOf(loss.kind), false, [&] { return case_of(loss.step, loss.how); });
    ++lost_;
    const bool hang = loss.kind == Loss::Kind::kHang;
    ++(hang ? hangs : crashes);
    if (hang && ++hangs_ >= kHangsInAll) throw GivenUp("too many calls have not returned");
    if (hangs >= kHangsPerRun || crashes >= kCrashesPerRun) throw RunEnded();
  };
  SharedArray<LoadFailure> failure(1);
  const auto load_and_step = [&](size_t i) {
    try {
      step(library_.Get(), i);
    } catch (const LoadError& error) {
      std::strncpy(failure[0].text, error.what(), sizeof(failure[0].text) - 1);
    }
  };
  Printed printed;
  try {
    printed = sandbox_.Run(count, load_and_step, on_loss);
  } catch (const RunEnded&) {
  }
  if (failure[0].text[0] != '\0') {
    throw io::UsageError(fmt::format("cannot load {}", failure[0].text));
  }
  report.Judge(Finding::kPrints, printed.text.empty(), [&] {
    return case_of(printed.step, fmt::format("wrote \"{}\"", printed.text.substr(0, 200)));
  });
}

template <typename Answer>
void Session::JudgeEnds(const SharedArray<Answer>& answers,
                        const std::function<bool(size_t)>& finite,
                        const std::function<Case(size_t, std::string)>& case_of) {
  for (size_t i = 0; i < answers.size(); ++i) {
    const Answer& answer = answers[i];
    if (answer.outcome == Outcome::kNotRun) continue;  // lost, which is judged, or left out
    report.Passed(Finding::kCrash);
    report.Passed(Finding::kExit);
    report.Judge(Finding::kHang, answer.outcome != Outcome::kEndless,
                 [&] { return case_of(i, "adds solutions without end"); });
    report.Judge(finite(i) ? Finding::kException : Finding::kThrowsNonFinite,
                 answer.outcome != Outcome::kThrew,
                 [&] { return case_of(i, fmt::format("threw \"{}\"", answer.what)); });
  }
}

SharedArray<FkAnswer> Session::Forward(const std::vector<Joints>& joints) {
  SharedArray<FkAnswer> answers(joints.size());
  const auto case_of = [&](size_t i, const std::string& words) {
    return CaseOf("ComputeFk: " + words, joints[i]);
  };
  Run(
      joints.size(), [&](const Solver& solver, size_t i) { solver.Forward(joints[i], answers[i]); },
      case_of);
  JudgeEnds(
      answers, [&](size_t i) { return AllFinite(joints[i]); }, case_of);
  for (size_t i = 0; i < answers.size(); ++i) JudgePose(joints[i], answers[i]);
  return answers;
}

// There is no right answer to joints that aren't finite.
void Session::JudgePose(const Joints& joints, FkAnswer& answer) {
  if (answer.outcome != Outcome::kReturned || !AllFinite(joints)) return;
  const bool finite = AllFinite(answer.pose);
  const double off = OffRotation(answer.pose.rotation);
  const bool pose = finite && off <= kLooseError;
  report.Judge(Finding::kForwardNotPose, pose, finite ? off : std::nan(""), [&] {
    return CaseOf(finite ? fmt::format("ComputeFk: products of its columns off by {:.3g}", off)
                         : "ComputeFk: not finite",
                  joints);
  });
  if (!pose) answer.outcome = Outcome::kNoPose;
}

SharedArray<IkAnswer> Session::Solve(const std::vector<IkRequest>& requests) {
  SharedArray<IkAnswer> answers(requests.size());
  const auto case_of = [&](size_t i, const std::string& words) {
    return CaseOf("ComputeIk: " + words, requests[i]);
  };
  Run(
      requests.size(),
      [&](const Solver& solver, size_t i) {
        solver.Solve(requests[i].pose, requests[i].standing, answers[i]);
      },
      case_of);
  JudgeEnds(
      answers, [&](size_t i) { return AllFinite(requests[i].pose); }, case_of);
  for (size_t i = 0; i < answers.size(); ++i) {
    if (answers[i].outcome == Outcome::kReturned) JudgeContract(requests[i], answers[i]);
  }
  if (report.Count(Finding::kSolutionLayout) > 0) throw GivenUp("its solutions can't be read");
  return answers;
}

void Session::JudgeLayout(const IkRequest& request, const IkAnswer& answer) {
  if (answer.added == 0) return;  // nothing to see
  constexpr size_t kPolymorphicBytes = 6 * 32;
  report.Judge(Finding::kSolutionLayout, answer.odd_bytes == 0, [&] {
    return CaseOf(fmt::format("a solution of {} bytes{}", answer.odd_bytes,
                              answer.odd_bytes == kPolymorphicBytes
                                  ? ": six entries of 32, so the solver was built with a header of "
                                    "late 0x1000004b or after; build it again with an earlier one"
                                  : ""),
                  request);
  });
}

void Session::JudgeContract(const IkRequest& request, const IkAnswer& answer) {
  JudgeLayout(request, answer);
  // What a list that isn't empty makes of the result is judged by a check of its own.
  if (request.standing > 0) return;
  report.Judge(Finding::kAppendsOnFailure, answer.found || answer.added == 0, [&] {
    return CaseOf(fmt::format("returned false, added {}", answer.added), request);
  });
  report.Judge(Finding::kTrueWithoutSolution, !answer.found || answer.added > 0,
               [&] { return CaseOf("returned true, added nothing", request); });
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

}  // namespace qal::ikcheck
