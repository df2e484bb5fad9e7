#ifndef QAL_TOOLS_QAL_VERDICT_H_
#define QAL_TOOLS_QAL_VERDICT_H_

#include <qal/model/arm.h>

#include <optional>
#include <string>
#include <vector>

#include "../../io/trajectory.h"
#include "tables.h"
#include "units.h"

namespace qal::tools {

/// A plan's peak of one quantity, at the joint that comes nearest to its limit or exceeds it most.
struct Check {
  enum class Kind { kSpeed, kAcceleration, kJerk, kMotorSpeed, kRange };
  Kind kind;
  size_t joint;  ///< from 0
  size_t point;  ///< from 0
  double value;  ///< [rad/s, rad/s^2, rad/s^3, rpm, rad]
  Setting limit;
  bool exceeded;
};

/// A plan held against what its arm may do.
struct Verdict {
  std::vector<Check> checks;
  double first_step_rad;  ///< of the leading joint
  double last_step_rad;
  std::optional<double> end_step_ratio;  ///< the larger of both over the largest other step

  int Exceeded() const;
};

/// @param plan from the start to the end, one cycle from point to point
Verdict Judge(const io::FileTrajectory& plan, const Arm& arm);

/// Rows of a table.
std::string VerdictRows(const Verdict& verdict, const Units& units);
Json VerdictJson(const Verdict& verdict);
/// Says on standard error what is exceeded, a line each.
void NoteExceeded(const Verdict& verdict, const Units& units);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_VERDICT_H_
