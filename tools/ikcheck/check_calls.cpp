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

struct RecordedCalls {
  std::vector<IkRequest> requests;
  std::vector<IkAnswer> answers;
};

// Poses that ComputeIk has returned for, with its answers: those that it doesn't return for are
// found elsewhere, and would end what is to be seen here.
RecordedCalls RecordCalls(Session& session, size_t count) {
  const std::vector<Joints> joints = session.RandomJoints(count);
  const auto poses = session.Forward(joints);
  std::vector<IkRequest> requests;
  for (size_t i = 0; i < count; ++i) {
    if (poses[i].outcome == Outcome::kReturned) requests.push_back({poses[i].pose, joints[i]});
  }
  const auto answers = session.Solve(requests);
  RecordedCalls recorded;
  for (size_t i = 0; i < requests.size(); ++i) {
    if (answers[i].outcome != Outcome::kReturned) continue;
    recorded.requests.push_back(requests[i]);
    recorded.answers.push_back(answers[i]);
  }
  return recorded;
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

// The order in which calls are repeated: each twice, the last one first.
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
void JudgeRepeats(Session& session, const SharedArray<Answer>& answers,
                  const std::vector<T>& requests, const char* function) {
  const size_t count = requests.size() / 3;
  for (size_t i = 0; i < count; ++i) {
    const size_t again = requests.size() - 2 * (i + 1);
    if (answers[again].outcome == Outcome::kNotRun) continue;
    session.report.Judge(Finding::kUnrepeatable,
                         Same(answers[i], answers[again]) && Same(answers[i], answers[again + 1]),
                         [&] { return CaseOf(function, requests[i]); });
  }
}

// Calls of two threads and how they compare.
struct ThreadCalls {
  std::atomic<size_t> calls;
  std::atomic<size_t> different;
  std::atomic<size_t> first_different;  // index of the request
};

// Repeats the calls again and again, and compares with the answers before.
void CompareUntil(Clock::time_point end, const Solver& solver, const RecordedCalls& recorded,
                  bool backwards, ThreadCalls& result) {
  const size_t count = recorded.requests.size();
  for (size_t k = 0; Clock::now() < end; k = (k + 1) % count) {
    const size_t i = backwards ? count - 1 - k : k;
    const IkRequest& request = recorded.requests[i];
    IkAnswer ik = {};
    FkAnswer fk = {};
    solver.Solve(request.pose, 0, ik);
    solver.Forward(*request.from, fk);
    ++result.calls;
    if (Same(ik, recorded.answers[i]) && Same(fk.pose, request.pose)) continue;
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
  std::vector<IkRequest> requests = RecordCalls(session, 500).requests;
  const size_t reached = requests.size();
  for (size_t i = 0; i < reached; ++i) {
    requests.push_back(requests[i]);
    for (double& value : requests.back().pose.position) value += 10 * session.reach;
  }
  const auto expected = session.Solve(requests);
  for (IkRequest& request : requests) request.standing = 2;
  const auto answers = session.Solve(requests);
  size_t cleared = 0;
  for (size_t i = 0; i < answers.size(); ++i) {
    if (answers[i].outcome != Outcome::kReturned) continue;
    if (answers[i].cleared) ++cleared;
    session.report.Judge(Finding::kClearsList, !answers[i].cleared,
                         [&] { return CaseOf("two entries beforehand, cleared", requests[i]); });
    session.report.Judge(Finding::kNeedsEmptyList, Same(answers[i], expected[i]), [&] {
      return CaseOf(
          fmt::format("two entries beforehand: returned {}, added {}; none: {}, {}",
                      answers[i].found, answers[i].added, expected[i].found, expected[i].added),
          requests[i]);
    });
  }
  row.values["calls"] = answers.size();
  row.values["cleared"] = cleared;
}

void CheckRepeatedCalls(Session& session, Row& row) {
  const std::vector<IkRequest> requests = WithRepeats(RecordCalls(session, 1000).requests);
  JudgeRepeats(session, session.Solve(requests), requests, "ComputeIk");
  const std::vector<Joints> joints = WithRepeats(session.RandomJoints(1000));
  JudgeRepeats(session, session.Forward(joints), joints, "ComputeFk");
  row.values["calls"] = requests.size() + joints.size();
  row.values["different"] = session.report.Count(Finding::kUnrepeatable);
}

void CheckTwoThreads(Session& session, Row& row) {
  const RecordedCalls recorded = RecordCalls(session, 500);
  if (recorded.requests.empty()) return;
  SharedArray<ThreadCalls> shared(1);
  ThreadCalls& result = shared[0];
  // Long enough for both to run side by side on a busy machine.
  const std::chrono::duration<double> duration(std::min(0.3, session.options.timeout_s / 3));
  const auto call = [&](const Solver& solver, size_t) {
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(duration);
    std::thread other([&] { CompareUntil(end, solver, recorded, true, result); });
    CompareUntil(end, solver, recorded, false, result);
    other.join();
  };
  session.Run(1, call, [](size_t, const std::string& words) {
    return Case{"calls from two threads at once: " + words};
  });
  session.report.Judge(Finding::kThreads, result.different == 0, [&] {
    return CaseOf(fmt::format("{} of {} calls", result.different.load(), result.calls.load()),
                  recorded.requests[result.first_different]);
  });
  row.values["calls"] = result.calls.load();
  row.values["different"] = result.different.load();
}

void CheckTime(Session& session, Row& row) {
  const std::vector<IkRequest> requests = RecordCalls(session, 100).requests;
  if (requests.empty()) return;
  const size_t lost_before = session.lost();
  constexpr size_t kRounds = 50;
  SharedArray<double> fk(kRounds);
  SharedArray<double> ik(kRounds);
  const auto measure = [&](const Solver& solver, size_t round) {
    Pose pose;
    fk[round] = Nanoseconds(requests.size(), [&](size_t i) {
      solver.compute_fk(requests[i].from->data(), pose.position, pose.rotation);
    });
    ik[round] = Nanoseconds(requests.size(), [&](size_t i) {
      ikfast::IkSolutionList<double> list;
      const Pose& target = requests[i].pose;
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
