#ifndef QAL_TOOLS_IKCHECK_CHECKS_H_
#define QAL_TOOLS_IKCHECK_CHECKS_H_

#include "session.h"

namespace qal::ikcheck {

/// For the private start of this program, see `RunHeapCheck`.
constexpr char kHeapOption[] = "--check-heap";

/// Runs all checks on a library, each in a process of its own.
/// @throw UsageError "PATH: REASON" when it is none or can't be loaded
Report RunChecks(const Options& options);

/// When `RunChecks` has started this program for the check of the heap: runs it and ends the
/// process. What main() does first.
void RunHeapCheck(int argc, const char* const* argv);

// A check has the session call the solver, judges the answers as findings of the session's report,
// and may put values into its row.

void CheckInterface(Session& session, Row& row);
/// Also finds the reach, for those that follow.
void CheckForward(Session& session, Row& row);

void CheckRandomPoses(Session& session, Row& row);
void CheckQuarterTurns(Session& session, Row& row);
void CheckEighthTurns(Session& session, Row& row);
void CheckSingularPoses(Session& session, Row& row);
void CheckNearSingularPoses(Session& session, Row& row);
void CheckAxisAlignedTool(Session& session, Row& row);
void CheckOutOfReach(Session& session, Row& row);

void CheckNonFiniteInput(Session& session, Row& row);
void CheckNonRotations(Session& session, Row& row);

void CheckStandingEntries(Session& session, Row& row);
void CheckRepeatedCalls(Session& session, Row& row);
void CheckTwoThreads(Session& session, Row& row);
/// The C library takes its checking allocator only when a program starts: this starts it again.
/// Comes back when there is none, and under the address sanitizer, which is one.
void StartWithHeapChecker(const Options& options, const Exchange& exchange);
void CheckHeap(Session& session, Row& row);
/// Only when the options describe an arm.
void CheckArm(Session& session, Row& row);
void CheckTime(Session& session, Row& row);

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_CHECKS_H_
