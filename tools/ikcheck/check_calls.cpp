#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <limits>
#include <thread>

#include "checks.h"

namespace qal::ikcheck {

namespace {

using Clock = std::chrono::steady_clock;

struct RecordedCall {
  IkRequest request;  // with the joints that ComputeFk has made it from
  IkAnswer answer;
};

// Calls of both functions that have returned. Those that haven't are found elsewhere, and would end
// what is to be seen here.
std::vector<RecordedCall> RecordCalls(Session& session, size_t count) {
  std::vector<RecordedCall> calls;
  for (const IkRequest& request : session.RandomPoses(count)) {
    const IkAnswer answer = session.Solve(request);
    if (answer.returned()) calls.push_back({request, answer});
  }
  return calls;
}

// To the last bit, which takes NaN for the same as itself.
template <typename T>
bool SameBits(const T& a, const T& b) {
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): see above
  return std::memcmp(&a, &b, sizeof(T)) == 0;
}
bool Same(const IkAnswer& a, const IkAnswer& b) {
  return a.outcome == b.outcome && a.found == b.found && a.added == b.added &&
         std::equal(
             a.solutions.begin(), a.solutions.end(), b.solutions.begin(), b.solutions.end(),
             [](const Solution& x, const Solution& y) { return SameBits(x.joints, y.joints); });
}

// How calls compare with the same ones before.
struct Repeats {
  size_t calls = 0;
  size_t different = 0;
  const IkRequest* last_different = nullptr;
};

void RepeatUntil(Clock::time_point end, const Solver& solver,
                 const std::vector<RecordedCall>& recorded, bool backwards, Repeats& repeats) {
  while (Clock::now() < end) {
    const size_t i = repeats.calls++ % recorded.size();
    const auto& [request, answer] = recorded[backwards ? recorded.size() - 1 - i : i];
    if (Same(solver.Solve(request.pose), answer) &&
        SameBits(solver.Forward(*request.from).pose, request.pose)) {
      continue;
    }
    ++repeats.different;
    repeats.last_different = &request;
  }
}

// Nanoseconds of one call in a row of them.
template <typename Call>
double Nanoseconds(const std::vector<RecordedCall>& calls, Call call) {
  const auto start = Clock::now();
  for (const RecordedCall& each : calls) call(each.request);
  const std::chrono::duration<double, std::nano> time = Clock::now() - start;
  return time.count() / static_cast<double>(calls.size());
}

}  // namespace

void CheckStandingEntries(Session& session, Row& row) {
  std::vector<IkRequest> requests = session.RandomPoses(500);
  const size_t reached = requests.size();
  for (size_t i = 0; i < reached; ++i) {
    requests.push_back(requests[i]);
    for (double& value : requests.back().pose.position) value += 10 * session.reach;
  }
  size_t cleared = 0;
  for (IkRequest& request : requests) {
    const IkAnswer expected = session.Solve(request);
    request.standing = 2;
    const IkAnswer answer = session.Solve(request);
    if (!expected.returned() || !answer.returned()) continue;
    if (answer.cleared) ++cleared;
    session.report.Judge(Finding::kClearsList, !answer.cleared,
                         [&] { return CaseOf("two entries beforehand, cleared", request); });
    session.report.Judge(Finding::kNeedsEmptyList, Same(answer, expected), [&] {
      return CaseOf(fmt::format("two entries beforehand: returned {}, added {}; none: {}, {}",
                                answer.found, answer.added, expected.found, expected.added),
                    request);
    });
  }
  row.values["calls"] = requests.size();
  row.values["cleared"] = cleared;
}

// Each twice, the last one first.
void CheckRepeatedCalls(Session& session, Row& row) {
  const std::vector<RecordedCall> calls = RecordCalls(session, 1000);
  for (auto call = calls.rbegin(); call != calls.rend(); ++call) {
    for (int again = 0; again < 2; ++again) {
      session.report.Judge(Finding::kUnrepeatable, Same(session.Solve(call->request), call->answer),
                           [&] { return CaseOf("ComputeIk", call->request); });
      const auto pose = session.Forward(*call->request.from);
      session.report.Judge(Finding::kUnrepeatable, pose && SameBits(*pose, call->request.pose),
                           [&] { return CaseOf("ComputeFk", *call->request.from); });
    }
  }
  row.values["calls"] = session.report.Judged(Finding::kUnrepeatable);
  row.values["different"] = session.report.Count(Finding::kUnrepeatable);
}

// From one thread first: what differs there as well doesn't come of the threads.
void CheckTwoThreads(Session& session, Row& row) {
  const std::vector<RecordedCall> recorded = RecordCalls(session, 500);
  if (recorded.empty()) return;
  // Long enough for both to run side by side on a busy machine.
  const auto duration = std::chrono::duration_cast<Clock::duration>(
      std::chrono::duration<double>(std::min(0.2, session.options.timeout_s / 3)));
  for (const bool together : {false, true}) {
    Repeats one;
    Repeats other;
    const char* const what = together ? "calls from two threads at once" : "calls from one thread";
    session.Run(what, [&](const Solver& solver) {
      const auto end = Clock::now() + duration;
      if (together) {
        std::thread thread([&] { RepeatUntil(end, solver, recorded, true, other); });
        RepeatUntil(end, solver, recorded, false, one);
        thread.join();
      } else {
        RepeatUntil(end - duration / 2, solver, recorded, false, one);
        RepeatUntil(end, solver, recorded, true, other);
      }
    });
    const size_t different = one.different + other.different;
    row.values["calls"] = one.calls + other.calls;
    row.values["different"] = different;
    session.report.Judge(
        together ? Finding::kThreads : Finding::kUnrepeatable, different == 0, [&] {
          return CaseOf(fmt::format("{}: {} of {}", what, different, one.calls + other.calls),
                        *(one.different > 0 ? one : other).last_different);
        });
  }
}

// The heap is looked at now and then: what is kept for good, or for the next call, comes with the
// first rounds or at once, and doesn't grow from look to look.
void CheckTime(Session& session, Row& row) {
  const std::vector<RecordedCall> calls = RecordCalls(session, 100);
  if (calls.empty()) return;
  constexpr int kRounds = 50;
  constexpr int kRoundsToLook = 10;
  // The best round: other programs only ever slow it down.
  double fk_ns = std::numeric_limits<double>::infinity();
  double ik_ns = fk_ns;
  double kept = fk_ns;  // the least of what was kept by a call between two looks [bytes]
  double before = 0.0;
  for (int round = 1; round <= kRounds; ++round) {
    session.Run("many calls in a row", [&](const Solver& solver) {
      double pose[64];  // with room for what is written outside
      fk_ns = std::min(fk_ns, Nanoseconds(calls, [&](const IkRequest& request) {
                         solver.compute_fk(request.from->data(), pose, pose + 32);
                       }));
      ik_ns = std::min(ik_ns, Nanoseconds(calls, [&](const IkRequest& request) {
                         ikfast::IkSolutionList<double> list;
                         (void)solver.compute_ik(request.pose.position.data(),
                                                 request.pose.rotation.data(), nullptr, list);
                       }));
    });
    if (round % kRoundsToLook != 0) continue;
    const auto heap = static_cast<double>(HeapBytes());
    if (round > kRoundsToLook) {
      kept = std::min(kept, (heap - before) / static_cast<double>(kRoundsToLook * calls.size()));
    }
    before = heap;
  }
  row.values["ns_per_ComputeFk"] = fk_ns;
  row.values["ns_per_ComputeIk"] = ik_ns;
  session.report.Judge(Finding::kLeaks, kept < 1, kept, [&] {
    return Case{fmt::format("many calls in a row: {:.3g} bytes kept by each of them", kept)};
  });
}

}  // namespace qal::ikcheck
