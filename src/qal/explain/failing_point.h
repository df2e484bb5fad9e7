#ifndef QAL_EXPLAIN_FAILING_POINT_H_
#define QAL_EXPLAIN_FAILING_POINT_H_

#include "../plan/line_path.h"
#include "explanation.h"
#include "line_trial.h"

// Internal: where on a line it fails.
namespace qal {

/// A line at the tool's own limits, whatever the joints say.
class ToolPace {
 public:
  ToolPace(const LinePath& line, const LineLimits& limits);

  /// The time at which the tool is at a part of the way, 0 to 1.
  double TimeAt(double along) const;
  /// The part of the way that is behind.
  double AlongAt(double time_s) const;
  /// How much of the way goes by [1/s].
  double SpeedAt(double time_s) const;
  double duration_s() const { return duration_s_; }

 private:
  AxisMotion motion_;  // of the part of the way
  double duration_s_;
};

/// The first sample beyond a part of the way.
FailingPoint FirstBeyond(const LinePath& line, const ToolPace& pace, double along, double cycle_s);

}  // namespace qal

#endif  // QAL_EXPLAIN_FAILING_POINT_H_
