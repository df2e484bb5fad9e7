#ifndef QAL_PLAN_PLAYED_RUN_H_
#define QAL_PLAN_PLAYED_RUN_H_

#include <vector>

#include "player.h"
#include "program_planner.h"

// Internal: a program's motion for a player.
namespace qal {

/// A motion from rest to rest: blocks that go on in motion, as one.
struct PlayedRun {
  std::vector<const ProgramBlock*> blocks;
  LimitedPath path;
  TimeLaw law;

  /// At a place of its path, at any speed there; of time 0.
  Sample SampleOf(const PathMoment& moment) const;
};

/// Those of a motion, which has to outlive them.
std::vector<PlayedRun> RunsOf(const ProgramMotion& motion);

/// Plays them.
/// @param from_s where to begin, as planned
Player PlayerOf(const std::vector<PlayedRun>& runs, const ProgramMotion& motion, double from_s);

/// Of the arm.
double CycleOf(const ProgramMotion& motion);

}  // namespace qal

#endif  // QAL_PLAN_PLAYED_RUN_H_
