#ifndef QAL_TOOLS_QAL_LIMITED_H_
#define QAL_TOOLS_QAL_LIMITED_H_

#include <qal/plan/binding.h>
#include <qal/plan/motion.h>

#include <functional>
#include <string>
#include <vector>

#include "move.h"

namespace qal::tools {

// What the commands share whose plans keep every limit.

/// Adds --scale.
void AddScale(NumberOption& scale, CLI::App& command);

/// The part of the arm's limits that --scale says, or all of them.
LimitScale ReadScale(const NumberOption& scale);

/// A failure to plan in words, with the command that says more about one on the way.
/// @param path as for `PlanFailureText`
std::string RefusalText(const PlanFailure& failure, const std::string& path,
                        const std::string& command, const Units& units);

/// The end of a move; of a pose, the joints nearest the start's.
/// @throw Failure when there are none
State EndOf(const Arm& arm, const classic::Ends& ends, const Units& units);

/// A motion for a summary.
struct LimitedMotion {
  Trajectory samples;
  std::vector<Binding> bindings;                    ///< the longest first
  std::function<double(double time_s)> along = {};  ///< from 0 to 1; none: it has no path
};

/// The row of the limit that a motion runs at for longest.
std::string LimitedByRow(const LimitedMotion& motion);
/// All of them.
Json LimitedByJson(const LimitedMotion& motion);

/// Judges the motion by its arm and writes it, as `WritePlan` does, with the limits it runs at.
/// @param rows and `json` what else is said about it
void WriteLimited(const PlanOptions& options, const io::LoadedArm& loaded,
                  const LimitedMotion& motion, const std::string& rows, const Json& json);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_LIMITED_H_
