#include "checks.h"

#include <fmt/format.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <iterator>

#include "../../io/error.h"
#include "../common/progress.h"
#include "child.h"

namespace qal::ikcheck {

namespace {

struct Check {
  const char* name;
  void (*run)(Session& session, Row& row);
};

constexpr Check kChecks[] = {
    {"interface", CheckInterface},
    {"forward kinematics", CheckForward},
    {"random joints", CheckRandomPoses},
    {"joints at multiples of 90 deg", CheckQuarterTurns},
    {"joints at multiples of 45 deg", CheckEighthTurns},
    {"singular joints", CheckSingularPoses},
    {"1e-12 to 1e-4 rad from them", CheckNearSingularPoses},
    {"tool along the base's axes", CheckAxisAlignedTool},
    {"within and out of reach", CheckOutOfReach},
    {"poses that are not finite", CheckNonFiniteInput},
    {"matrices that are no rotation", CheckNonRotations},
    {"list with entries beforehand", CheckStandingEntries},
    {"repeated calls", CheckRepeatedCalls},
    {"two threads", CheckTwoThreads},
    {"heap", CheckHeap},
    {"arm as described", CheckArm},
    {"time per call, on this machine", CheckTime},
};

// So many hangs, each of which costs its timeout, and the rest is left out.
constexpr size_t kHangs = 5;

// The longest that a check takes: 1 s for 100 poses, and a minute besides, with the usual timeout
// of a call.
double LongestCheck(const Options& options) {
  return options.timeout_s * (30 + static_cast<double>(options.poses) / 200);
}

// What a child answers, in a form that keeps NaN and any text.
Bytes Answer(const Check& check, const Options& options, double reach, Exchange& exchange) try {
  Session session(options, exchange, reach);
  Row row{check.name};
  try {
    check.run(session, row);
  } catch (const GivenUp& reason) {
    session.report.stopped = fmt::format("at \"{}\": {}", check.name, reason.what());
  }
  session.JudgeState();
  if (!row.values.empty()) session.report.rows.push_back(row);
  return Json::to_cbor({{"report", session.report.Packed()}, {"reach", session.reach}});
} catch (const io::UsageError& error) {
  return Json::to_cbor({{"refused", error.what()}});
}

// The line in which an allocator says that the heap is damaged; empty when there is none.
std::string HeapComplaint(const std::string& output) {
  for (const char* words :
       {"free(): ", "malloc(): ", "realloc(): ", "malloc: ", "malloc_consolidate(): ",
        "munmap_chunk(): ", "corrupted size vs. prev_size", "double free or corruption",
        "AddressSanitizer: heap-", "AddressSanitizer: attempting "}) {
    const size_t at = output.find(words);
    if (at != std::string::npos) return output.substr(at, output.find('\n', at) - at);
  }
  return "";
}

// Runs the checks one by one, and puts their answers together.
class Checker {
 public:
  explicit Checker(const Options& options)
      : options_(options), runner_({options.timeout_s, LongestCheck(options)}) {
    report_.library = options.library;
    if (options.arm) {
      report_.arm = {
          {"name", options.arm->name}, {"file", options.arm->file}, {"kind", options.arm->kind}};
    }
  }

  Report Run() {
    for (const Check& check : kChecks) {
      progress_.Show(fmt::format("ikcheck: check {} of {}, {}", &check - kChecks + 1,
                                 std::size(kChecks), check.name));
      Exchange exchange;
      ChildEnd end = runner_.Run(exchange, [&] {
        if (check.run == CheckHeap) StartWithHeapChecker(options_, exchange);
        return Answer(check, options_, reach_, exchange);
      });
      if (end.kind == ChildEnd::Kind::kAnswered && !Take(end.answer)) {
        end.kind = ChildEnd::Kind::kExit;
        end.how = "no answer that can be read";
      }
      if (end.kind != ChildEnd::Kind::kAnswered) {
        TakeLoss(check, end, exchange.Call());
      } else {
        report_.Judge(Finding::kProcess, !end.left_processes, [&] {
          return Case{fmt::format("\"{}\": processes that go on", check.name)};
        });
      }
      if (!report_.stopped.empty()) break;
    }
    if (report_.Judged(Finding::kSolutionLayout) > report_.Count(Finding::kSolutionLayout)) {
      report_.interface["solution_layout"] = "six entries of 24 bytes";
    }
    return report_;
  }

 private:
  // Whether it is an answer.
  bool Take(const Bytes& bytes) try {
    const Json answer = Json::from_cbor(bytes);
    if (answer.contains("refused")) throw io::UsageError(answer["refused"].get<std::string>());
    Report report = report_;
    report.Add(answer.at("report"));
    reach_ = answer.at("reach").get<double>();
    report_ = report;
    return true;
  } catch (const Json::exception&) {
    return false;
  }

  void TakeLoss(const Check& check, const ChildEnd& end, const CallNote& call) {
    const std::string heap = end.kind == ChildEnd::Kind::kHang ? "" : HeapComplaint(end.output);
    const Finding finding = !heap.empty()                        ? Finding::kHeap
                            : end.kind == ChildEnd::Kind::kCrash ? Finding::kCrash
                            : end.kind == ChildEnd::Kind::kExit  ? Finding::kExit
                                                                 : Finding::kHang;
    const std::string words = call.what + ": " + end.how + (heap.empty() ? "" : ", " + heap);
    report_.Judge(finding, false, [&] {
      if (call.pose) return CaseOf(words, IkRequest{*call.pose, call.joints});
      return call.joints ? CaseOf(words, *call.joints) : Case{words};
    });
    report_.unfinished.emplace_back(check.name, end.how);
    const char* const why =
        check.run == CheckInterface ? "it can't be loaded or doesn't answer the queries"
        : report_.Count(Finding::kHang) >= kHangs ? "too many calls have not returned"
                                                  : nullptr;
    if (why != nullptr) report_.stopped = fmt::format("at \"{}\": {}", check.name, why);
  }

  const Options& options_;
  ChildRunner runner_;
  tools::Progress progress_;
  double reach_ = 1.0;
  Report report_;
};

}  // namespace

void RunHeapCheck(int argc, const char* const* argv) {
  if (argc != 5 || std::strcmp(argv[1], kHeapOption) != 0) return;
  Options options;
  options.library = argv[3];
  options.seed = static_cast<unsigned>(std::stoul(argv[4]));
  Exchange exchange(std::stoi(argv[2]));
  exchange.Enter();
  exchange.Answer(Answer({"heap", CheckHeap}, options, 1.0, exchange));
}

Report RunChecks(const Options& options) try {
  return Checker(options).Run();
} catch (const Interrupted& end) {
  (void)::kill(::getpid(), end.signal);
  throw io::Failure("stopped");
}

}  // namespace qal::ikcheck
