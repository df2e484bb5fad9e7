#ifndef QAL_TOOLS_QAL_LINE_FAILURE_H_
#define QAL_TOOLS_QAL_LINE_FAILURE_H_

#include <string>
#include <vector>

#include "move.h"

namespace qal::tools {

/// The waypoint that the library printed last, to nine digits: the one that failed, with the joints
/// of the one before.
/// @throw Failure when there is none in `text`
RoadPoint LastPrintedPoint(const std::string& text);

/// "at point 57, 0.0224 m (22.4 %) along the line, at POSE". Points are counted from 0.
std::string PlaceOnLine(const Move& move, size_t index, const RoadPoint& point, const Units& units);

/// @param failed    the point without a solution, with the joints it was to be solved from
/// @param bound_rad the bound on its step
[[noreturn]] void ThrowUnsolved(const Move& move, size_t index, const RoadPoint& failed,
                                double bound_rad, const Units& units);

/// Refuses a line where the library held joints although the pose went on.
/// @param bound_rad the bound on each step
void CheckReached(const Move& move, const std::vector<RoadPoint>& points, double bound_rad,
                  const Units& units);

/// Refuses ends that are no pair for a straight line.
void CheckPair(const Move& move, const Units& units);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_LINE_FAILURE_H_
