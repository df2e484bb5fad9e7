#include "checks.h"

#include <fmt/format.h>

namespace qal::ikcheck {

namespace {

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
    {"arm as described", CheckArm},
    {"time per call, on this machine", CheckTime},
};

}  // namespace

Report RunChecks(const Session::Options& options) {
  Report report;
  report.library = options.library;
  if (options.arm) {
    report.arm = {
        {"name", options.arm->name}, {"file", options.arm->file}, {"kind", options.arm->kind}};
  }
  Session session(options, report);
  for (const Check& check : kChecks) {
    Row row{check.name};
    session.StartCheck();
    try {
      check.run(session, row);
    } catch (const GivenUp& reason) {
      report.stopped = fmt::format("at \"{}\": {}", check.name, reason.what());
      break;
    }
    if (session.lost() > 0) report.unfinished.push_back({check.name, session.lost()});
    if (!row.values.empty()) report.rows.push_back(row);
  }
  if (report.Judged(Finding::kSolutionLayout) > report.Count(Finding::kSolutionLayout)) {
    report.interface["solution_layout"] = "six entries of 24 bytes";
  }
  return report;
}

}  // namespace qal::ikcheck
