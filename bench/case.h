#ifndef QAL_BENCH_CASE_H_
#define QAL_BENCH_CASE_H_

#include <functional>
#include <string>
#include <vector>

#include "workload.h"

namespace qal::bench {

/// What a case is for, besides being timed.
enum class Kind {
  kOurs,     ///< its instructions are counted, as the guard against regressions
  kPeer,     ///< timed beside ours only
  kScaling,  ///< one of a row of sizes
  kThreads,  ///< timed on one thread and on two
  kBatches,  ///< timed by the clock, as it takes threads of its own
};

/// One thing that is measured.
struct Case {
  std::string name;  ///< family/what
  Kind kind;
  /// Operations in a run, waypoints for trajectories; the unit in which times are given.
  size_t items;
  /// Does them. Returns how many came out as they should, `items` when all is well.
  std::function<size_t()> run;
};

using Cases = std::vector<Case>;

// Each adds a family of cases; `work` has to outlive them.
void AddKinematics(const Workload& work, Cases& cases);    ///< solver, forward, inverse, jog
void AddTrajectories(const Workload& work, Cases& cases);  ///< lines and joint moves
void AddLanes(const Workload& work, Cases& cases);  ///< the solver by number of lanes; batches
void AddArms(Cases& cases);      ///< solvers of arms near a family and of the other families
void AddMoves(Cases& cases);     ///< joint moves within limits, and their samples
void AddPlayback(Cases& cases);  ///< stops of programs, decided cycle by cycle
void AddLines(const Workload& work, Cases& cases);  ///< lines that keep every limit
void AddScaling(Cases& cases);  ///< the same from 100 to 1,000,000 waypoints, as far as each goes
void AddPeer(const Workload& work, Cases& cases);  ///< the same jobs done by Orocos KDL

}  // namespace qal::bench

#endif  // QAL_BENCH_CASE_H_
