#include "line_failure.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "../../io/error.h"
#include "../../src/kinematics/ikfunc.h"
#include "../../src/kinematics/trajectory/straight_line.h"
#include "agreement.h"
#include "solutions.h"
#include "waypoints.h"

namespace qal::tools {

using namespace io;

RoadPoint LastPrintedPoint(const std::string& text) {
  const size_t start = text.rfind("position [m]:");
  RoadPoint point;
  auto& [x, y, z] = point.position;
  auto& [qw, qx, qy, qz] = point.orientation;
  double* q = point.jointpos;
  constexpr int kNumbers = 13;
  if (start == std::string::npos ||
      std::sscanf(text.c_str() + start,
                  "position [m]: x %lf y %lf z %lf orientation (quaternion): w %lf x %lf y %lf "
                  "z %lf joints [rad]: q1 %lf q2 %lf q3 %lf q4 %lf q5 %lf q6 %lf",
                  &x, &y, &z, &qw, &qx, &qy, &qz, &q[0], &q[1], &q[2], &q[3], &q[4],
                  &q[5]) != kNumbers) {
    throw Failure("the library refuses the line; its own lines above say why");
  }
  return point;
}

std::string PlaceOnLine(const Move& move, size_t index, const RoadPoint& point,
                        const Units& units) {
  const double along_m = Distance(move.start.position, point.position);
  const double length_m = move.Length();
  return fmt::format("at point {}, {:.6g} {} ({:.3g} %) along the line, at {}", index,
                     units.Length(along_m), units.length(),
                     length_m > 0.0 ? 100.0 * along_m / length_m : 0.0, PoseText(point, units));
}

void ThrowUnsolved(const Move& move, size_t index, const RoadPoint& failed, double bound_rad,
                   const Units& units) {
  throw Failure(fmt::format("no solution {}: {}", PlaceOnLine(move, index, failed, units),
                            WhyUnsolved(failed, failed.jointpos, bound_rad, units)));
}

void CheckReached(const Move& move, const std::vector<RoadPoint>& points, double bound_rad,
                  const Units& units) {
  for (size_t i = 0; i < points.size(); ++i) {
    if (GapAt(points[i]).Reaches()) continue;
    RoadPoint held = points[i];
    const RoadPoint& before = i == 0 ? move.start : points[i - 1];
    std::copy(before.jointpos, before.jointpos + kJointCount, held.jointpos);
    ThrowUnsolved(move, i, held, bound_rad, units);
  }
}

void CheckPair(const Move& move, const Units& units) {
  if (Ikfunc::PositionCompare(move.start, move.end, kLinePairPositionM, kLinePairOrientation)) {
    return;
  }
  const Pos far = move.end.position - move.start.position;
  const double farthest = std::max({std::fabs(far.x), std::fabs(far.y), std::fabs(far.z)});
  if (farthest > static_cast<double>(kLinePairPositionM)) {
    throw Failure(
        fmt::format("the end is {:.6g} {} away on an axis; a line may be {:g} {} long "
                    "on each",
                    units.Length(farthest), units.length(),
                    units.Length(static_cast<double>(kLinePairPositionM)), units.length()));
  }
  throw Failure(
      fmt::format("the tool would have to turn: the line starts at {} and ends at {}; a "
                  "straight line keeps each quaternion component within {:g}",
                  PoseText(move.start, units), PoseText(move.end, units),
                  static_cast<double>(kLinePairOrientation)));
}

}  // namespace qal::tools
