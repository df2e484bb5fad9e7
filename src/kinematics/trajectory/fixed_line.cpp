#include <limits>
#include <optional>

#include "../../core/decimals.h"
#include "../pose/agreement.h"
#include "../solve/inverse.h"
#include "line_walk.h"
#include "straight_line.h"

// Each point is solved against the joints of the one before. The working point carries them along:
// a failed solve leaves them as they are, so they serve as its own reference.

namespace qal {

namespace {

bool TellNoPair(const Context& arm, const RoadPoint& start, const RoadPoint& end) {
  arm.observer.Hear({Event::kFixedLineNoPair, &start, &end});
  return false;
}

// Cuts orientations that aren't exactly equal to four decimals, and compares again.
bool HaveOneOrientation(RoadPoint& start, RoadPoint& end) {
  if (start.orientation == end.orientation) return true;
  for (Ori* orientation : {&start.orientation, &end.orientation}) {
    orientation->w = CutFourDecimals(orientation->w);
    orientation->x = CutFourDecimals(orientation->x);
    orientation->y = CutFourDecimals(orientation->y);
    orientation->z = CutFourDecimals(orientation->z);
  }
  return start.orientation == end.orientation;
}

}  // namespace

int CountFixedLine(const Context& arm, const RoadPoint& start, RoadPoint end, int speed) {
  constexpr int kPointUnsolved = 0;
  constexpr int kEndUnsolved = -1;
  constexpr int kNoLine = -2;
  const double step = FixedLineStep(speed);
  if (!PosesAgree(start, end, kLinePairPositionM, kLinePairOrientation)) {
    (void)TellNoPair(arm, start, end);
    return kNoLine;
  }
  if (speed < 1) return kNoLine;
  const Pos dst = end.position - start.position;
  const std::optional<int> step_count = TruncateToInt(LengthOf(dst) / step);
  if (!step_count) return kNoLine;  // a NaN coordinate passes the pair check

  RoadPoint point = start;
  for (int i = 0; i < *step_count; ++i) {
    point.position = PointOnLine(start.position, dst, i, *step_count);
    const Pos one_step(dst.x / *step_count, dst.y / *step_count, dst.z / *step_count);
    if (!SolveLineStep(arm, point, one_step, point.jointpos, step * kCountedStepFactor)) {
      arm.observer.Hear({Event::kLinePointUnsolved, &point, nullptr, i});
      return kPointUnsolved;
    }
  }
  if (!SolveNearest(arm, end, end.jointpos)) {
    arm.observer.Hear({Event::kLineEndUnsolved, &point, nullptr, *step_count});
    return kEndUnsolved;
  }
  return *step_count + 1;
}

bool FillFixedLine(const Context& arm, RoadPoint start, RoadPoint end, int step_count,
                   RoadPoint* points, int speed) {
  if (step_count < 1) return false;
  const double bound = FixedLineStep(speed) * kFixedStepFactor;
  if (!HaveOneOrientation(start, end)) return TellNoPair(arm, start, end);
  const Pos dst = end.position - start.position;
  RoadPoint point = start;  // with the cut orientation, where it was cut
  for (int i = 0; i < step_count; ++i) {
    point.position = PointOnLine(start.position, dst, i, step_count);
    if (!SolveWithin(arm, point, point.jointpos, bound)) {
      point.position = Pos(CutSixDecimals(point.position.x), CutSixDecimals(point.position.y),
                           CutSixDecimals(point.position.z));
      if (!SolveWithin(arm, point, point.jointpos, bound)) {
        arm.observer.Hear({Event::kFixedLineUnsolved, &point, nullptr, i});
        return false;
      }
    }
    points[i] = point;
  }
  points[step_count - 1] = end;
  return true;
}

int FillFineLine(const Context& arm, const RoadPoint& start, RoadPoint end, double precision,
                 RoadPoint* points) {
  constexpr int kNoLine = -2;
  const double step = kFixedLineStepM * precision;
  if (!(start.orientation == end.orientation) || !(precision > 0.0)) return kNoLine;
  const Pos dst = end.position - start.position;
  const std::optional<int> whole_steps = TruncateToInt(LengthOf(dst) / step);
  // The end point has to be counted too.
  if (!whole_steps || *whole_steps == std::numeric_limits<int>::max()) return kNoLine;
  const int step_count = *whole_steps;

  RoadPoint point = start;
  // A point without a solution keeps the joints of the one before.
  const auto solve = [&arm](RoadPoint& at, int index) {
    if (SolveWithin(arm, at, at.jointpos, kHoldStepRad)) return;
    arm.observer.Hear({Event::kPointHeld, &at, nullptr, index});
  };
  for (int i = 0; i < step_count; ++i) {
    point.position = PointOnLine(start.position, dst, i, step_count);
    solve(point, i);
    points[i] = point;
  }
  solve(end, step_count);
  points[step_count] = end;
  return step_count + 1;
}

}  // namespace qal
