#include "line_plan.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "../../io/error.h"
#include "../../io/numbers.h"
#include "../../src/kinematics/ikfunc.h"
#include "../../src/kinematics/solve/inverse.h"
#include "../../src/kinematics/solve/solution_choice.h"
#include "../../src/kinematics/trajectory/straight_line.h"
#include "../common/library_lines.h"
#include "line_failure.h"
#include "solutions.h"
#include "waypoints.h"

namespace qal::tools {

using namespace io;

namespace {

// The end as the library likes it. It has the start's orientation to within a line's tolerance; the
// library cuts both to four decimals where they are not exactly equal, or refuses. And it has
// joints of its own where there are any: the library looks for them there.
RoadPoint AlignedEnd(const Move& move) {
  RoadPoint end = move.end;
  end.orientation = move.start.orientation;
  RoadPoint solved = end;
  if (move.end_is_pose && Ikfunc::ArmIk(solved, end.jointpos)) return solved;
  return end;
}

// Checks the line, and gives its last point the move's end. Where that is a pose, its joints are
// those that the line arrives with. The library appends the end unseen, and so the step to it.
void Arrive(const Move& move, std::vector<RoadPoint>& points, double bound_rad,
            const Units& units) {
  points.pop_back();
  CheckReached(move, points, bound_rad, units);
  const RoadPoint before = points.empty() ? move.start : points.back();
  const RoadPoint last = move.end_is_pose
                             ? SolveNear(move.end, before, kNoStepBound,
                                         PlaceOnLine(move, points.size(), move.end, units), units)
                             : move.end;
  for (int j = 0; j < kJointCount; ++j) {
    const double step = std::fabs(last.jointpos[j] - before.jointpos[j]);
    if (step <= kLineStepRad) continue;
    throw Failure(fmt::format(
        "the line arrives with other joints than the end's: joint {} would jump {:.6g} {} to the "
        "last point, at most {:g} {} are one step",
        j + 1, units.Angle(step), units.angle(), units.Angle(kLineStepRad), units.angle()));
  }
  points.push_back(last);
}

// The index of a printed point on a line of `steps` equal steps; a line of no length has just one.
size_t IndexOnLine(const Move& move, const RoadPoint& point, int steps) {
  if (!(move.Length() > 0.0)) return 0;
  return static_cast<size_t>(
      std::lround(Distance(move.start.position, point.position) / move.Length() * steps));
}

}  // namespace

std::vector<RoadPoint> PlanFixedLine(const Move& move, int speed, const Units& units) {
  const LibraryLines lines;
  CheckPair(move, units);
  const RoadPoint end = AlignedEnd(move);
  const double step_m = speed * kFixedLineStepM / 5.0;
  constexpr int kEndUnsolved = -1;
  const int count = Ikfunc::CountLineSize(move.start, end, speed);
  if (count < 1) {
    const int steps = static_cast<int>(move.Length() / step_m);
    if (count == kEndUnsolved) {
      ThrowUnsolved(move, static_cast<size_t>(steps), end, kNoStepBound, units);
    }
    const RoadPoint failed = LastPrintedPoint(lines.text());
    ThrowUnsolved(move, IndexOnLine(move, failed, steps), failed, step_m * 100.0, units);
  }
  std::vector<RoadPoint> points(static_cast<size_t>(count));
  if (!Ikfunc::CountLineToBuffer(move.start, end, count, points.data(), speed)) {
    const RoadPoint failed = LastPrintedPoint(lines.text());
    ThrowUnsolved(move, IndexOnLine(move, failed, count), failed, step_m * 20.0, units);
  }
  Arrive(move, points, step_m * 20.0, units);
  return points;
}

std::vector<RoadPoint> PlanFineLine(const Move& move, double precision, const Units& units) {
  // A million points are 83 minutes; each takes memory, and time to solve.
  constexpr double kMostSteps = 1e6;
  CheckPair(move, units);
  const double steps = move.Length() / (kFixedLineStepM * precision);
  if (steps > kMostSteps) {
    throw UsageError(
        fmt::format("--precision {}: {:.3g} points on this line, at most {:g} are "
                    "planned",
                    precision, steps, kMostSteps));
  }
  // The end point, and one more where the library's quotient rounds the other way.
  std::vector<RoadPoint> points(static_cast<size_t>(steps) + 2);
  const int count =
      Ikfunc::CountLineToBuffer(move.start, AlignedEnd(move), precision, points.data());
  if (count < 1) throw Failure("the library refuses the line");
  points.resize(static_cast<size_t>(count));
  Arrive(move, points, kHoldStepRad, units);
  return points;
}

std::vector<RoadPoint> PlanRampedLine(const Move& move, int speed, const Units& units) {
  const LibraryLines lines;
  CheckPair(move, units);
  std::vector<RoadPoint> points;
  if (!Ikfunc::CountLineToBuffer(move.start, AlignedEnd(move), &points, speed)) {
    ThrowUnsolved(move, points.size(), LastPrintedPoint(lines.text()), kLineStepRad, units);
  }
  if (points.empty()) {
    const double shortest_m = speed * ((speed + 1.0) * kRampUnitM);
    throw Failure(
        fmt::format("the line is too short for its ramps at --speed {}: {} {}, and the "
                    "shortest that works is {} {}",
                    speed, FormatNumber(units.Length(move.Length())), units.length(),
                    FormatNumber(units.Length(shortest_m)), units.length()));
  }
  Arrive(move, points, kLineStepRad, units);
  return points;
}

}  // namespace qal::tools
