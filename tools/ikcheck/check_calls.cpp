#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

#include "checks.h"
#include "pose_judge.h"

namespace qal::ikcheck {

namespace {

using Clock = std::chrono::steady_clock;

struct Asked {
  std::vector<Question> questions;
  std::vector<IkAnswer> answers;
};

// Poses that ComputeIk has returned for, with its answers: those that it doesn't return for are
// found elsewhere, and would end what is to be seen here.
Asked AskSome(Session& session, size_t count) {
  const std::vector<Joints> joints = session.RandomJoints(count);
  const auto poses = session.Forward(joints);
  std::vector<Question> questions;
  for (size_t i = 0; i < count; ++i) {
    if (poses[i].outcome == Outcome::kReturned) questions.push_back({poses[i].pose, joints[i]});
  }
  const auto answers = session.Solve(questions);
  Asked asked;
  for (size_t i = 0; i < questions.size(); ++i) {
    if (answers[i].outcome != Outcome::kReturned) continue;
    asked.questions.push_back(questions[i]);
    asked.answers.push_back(answers[i]);
  }
  return asked;
}

// To the last bit, which takes NaN for the same as itself.
// NOLINTBEGIN(bugprone-suspicious-memory-comparison)
bool Same(const IkAnswer& a, const IkAnswer& b) {
  if (a.outcome != b.outcome || a.found != b.found || a.added != b.added || a.kept != b.kept) {
    return false;
  }
  for (size_t k = 0; k < a.kept; ++k) {
    if (std::memcmp(&a.solutions[k].joints, &b.solutions[k].joints, sizeof(Joints)) != 0) {
      return false;
    }
  }
  return true;
}
bool Same(const Pose& a, const Pose& b) { return std::memcmp(&a, &b, sizeof(Pose)) == 0; }
// NOLINTEND(bugprone-suspicious-memory-comparison)
bool Same(const FkAnswer& a, const FkAnswer& b) {
  return a.outcome == b.outcome && Same(a.pose, b.pose);
}

// The order in which things are asked again: each twice, the last one first.
template <typename T>
std::vector<T> WithRepeats(const std::vector<T>& things) {
  std::vector<T> all = things;
  for (auto thing = things.rbegin(); thing != things.rend(); ++thing) {
    all.push_back(*thing);
    all.push_back(*thing);
  }
  return all;
}

template <typename Answer, typename T>
void JudgeRepeats(Session& session, const SharedArray<Answer>& answers, const std::vector<T>& asked,
                  const char* function) {
  const size_t count = asked.size() / 3;
  for (size_t i = 0; i < count; ++i) {
    const size_t again = asked.size() - 2 * (i + 1);
    if (answers[again].outcome == Outcome::kNotRun) continue;
    session.report.Judge(Finding::kUnrepeatable,
                         Same(answers[i], answers[again]) && Same(answers[i], answers[again + 1]),
                         [&] { return CaseOf(function, asked[i]); });
  }
}

// Calls of two threads and how they compare.
struct ThreadCalls {
  std::atomic<size_t> calls;
  std::atomic<size_t> different;
  std::atomic<size_t> first_different;  // index of the question
};

// Asks again and again, and compares with the answers before.
void CompareUntil(Clock::time_point end, const Solver& solver, const Asked& asked, bool backwards,
                  ThreadCalls& result) {
  const size_t count = asked.questions.size();
  for (size_t k = 0; Clock::now() < end; k = (k + 1) % count) {
    const size_t i = backwards ? count - 1 - k : k;
    const Question& question = asked.questions[i];
    IkAnswer ik = {};
    FkAnswer fk = {};
    solver.Solve(question.pose, 0, ik);
    solver.Forward(*question.from, fk);
    ++result.calls;
    if (Same(ik, asked.answers[i]) && Same(fk.pose, question.pose)) continue;
    if (result.different++ == 0) result.first_different = i;
  }
}

// Nanoseconds of one call in a row of them.
template <typename Call>
double Nanoseconds(size_t count, Call call) {
  const auto start = Clock::now();
  for (size_t i = 0; i < count; ++i) call(i);
  const std::chrono::duration<double, std::nano> time = Clock::now() - start;
  return time.count() / static_cast<double>(count);
}

}  // namespace

void CheckStandingEntries(Session& session, Row& row) {
  std::vector<Question> questions = AskSome(session, 500).questions;
  const size_t reached = questions.size();
  for (size_t i = 0; i < reached; ++i) {
    questions.push_back(questions[i]);
    for (double& value : questions.back().pose.position) value += 10 * session.reach;
  }
  const auto expected = session.Solve(questions);
  for (Question& question : questions) question.standing = 2;
  const auto answers = session.Solve(questions);
  size_t cleared = 0;
  for (size_t i = 0; i < answers.size(); ++i) {
    if (answers[i].outcome != Outcome::kReturned) continue;
    if (answers[i].cleared) ++cleared;
    session.report.Judge(Finding::kClearsList, !answers[i].cleared,
                         [&] { return CaseOf("two entries beforehand, cleared", questions[i]); });
    session.report.Judge(Finding::kNeedsEmptyList, Same(answers[i], expected[i]), [&] {
      return CaseOf(
          fmt::format("two entries beforehand: returned {}, added {}; none: {}, {}",
                      answers[i].found, answers[i].added, expected[i].found, expected[i].added),
          questions[i]);
    });
  }
  row.values["calls"] = answers.size();
  row.values["cleared"] = cleared;
}

void CheckRepeatedCalls(Session& session, Row& row) {
  const std::vector<Question> questions = WithRepeats(AskSome(session, 1000).questions);
  JudgeRepeats(session, session.Solve(questions), questions, "ComputeIk");
  const std::vector<Joints> joints = WithRepeats(session.RandomJoints(1000));
  JudgeRepeats(session, session.Forward(joints), joints, "ComputeFk");
  row.values["calls"] = questions.size() + joints.size();
  row.values["different"] = session.report.Count(Finding::kUnrepeatable);
}

void CheckTwoThreads(Session& session, Row& row) {
  const Asked asked = AskSome(session, 500);
  if (asked.questions.empty()) return;
  SharedArray<ThreadCalls> shared(1);
  ThreadCalls& result = shared[0];
  // Long enough for both to run side by side on a busy machine.
  const std::chrono::duration<double> duration(std::min(0.3, session.options.timeout_s / 3));
  const auto call = [&](const Solver& solver, size_t) {
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(duration);
    std::thread other([&] { CompareUntil(end, solver, asked, true, result); });
    CompareUntil(end, solver, asked, false, result);
    other.join();
  };
  session.Run(1, call, [](size_t, const std::string& words) {
    return Case{"calls from two threads at once: " + words};
  });
  session.report.Judge(Finding::kThreads, result.different == 0, [&] {
    return CaseOf(fmt::format("{} of {} calls", result.different.load(), result.calls.load()),
                  asked.questions[result.first_different]);
  });
  row.values["calls"] = result.calls.load();
  row.values["different"] = result.different.load();
}

void CheckTime(Session& session, Row& row) {
  const std::vector<Question> questions = AskSome(session, 100).questions;
  if (questions.empty()) return;
  const size_t lost_before = session.lost();
  constexpr size_t kRounds = 50;
  SharedArray<double> fk(kRounds);
  SharedArray<double> ik(kRounds);
  const auto measure = [&](const Solver& solver, size_t round) {
    Pose pose;
    fk[round] = Nanoseconds(questions.size(), [&](size_t i) {
      solver.compute_fk(questions[i].from->data(), pose.position, pose.rotation);
    });
    ik[round] = Nanoseconds(questions.size(), [&](size_t i) {
      ikfast::IkSolutionList<double> list;
      const Pose& target = questions[i].pose;
      (void)solver.compute_ik(target.position, target.rotation, nullptr, list);
    });
  };
  session.Run(kRounds, measure, [](size_t, const std::string& words) {
    return Case{"many calls in a row: " + words};
  });
  if (session.lost() > lost_before) return;
  // The best round: other programs only ever slow it down.
  row.values["ns_per_ComputeFk"] = *std::min_element(fk.begin(), fk.end());
  row.values["ns_per_ComputeIk"] = *std::min_element(ik.begin(), ik.end());
}

}  // namespace qal::ikcheck
