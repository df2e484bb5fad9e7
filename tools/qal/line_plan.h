#ifndef QAL_TOOLS_QAL_LINE_PLAN_H_
#define QAL_TOOLS_QAL_LINE_PLAN_H_

#include <vector>

#include "move.h"

namespace qal::tools {

// Straight lines by the library's operations. A line that fails says at which point, how far along
// and at which pose. All throw Failure.

/// Steps of speed * 0.00004 m.
std::vector<RoadPoint> PlanFixedLine(const Move& move, int speed, const Units& units);

/// Steps of precision * 0.0002 m.
std::vector<RoadPoint> PlanFineLine(const Move& move, double precision, const Units& units);

/// Ramps up to steps of speed * 0.00002 m, and down.
std::vector<RoadPoint> PlanRampedLine(const Move& move, int speed, const Units& units);

struct SCurveLimits {
  float acceleration_m_s2;
  float jerk_m_s3;
  int motor_speed_rpm;
};

/// The first phase of a jerk-limited line, or both ends of a very short one. Notes on standard
/// error which of the two it is.
std::vector<RoadPoint> PlanSCurveLine(const Move& move, const SCurveLimits& limits,
                                      const Units& units);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_LINE_PLAN_H_
