#include <algorithm>
#include <cmath>

#include "../pose/agreement.h"
#include "../solve/inverse.h"
#include "line_walk.h"
#include "ramp_walk.h"
#include "straight_line.h"

namespace qal {

namespace {

// The displacement of length 2e-5 m along `dst`, from the slopes against its first non-zero axis.
Pos UnitStep(const Pos& dst) {
  constexpr double kUnitSquared = 4.0000000000000007e-10;  // 2e-5 * 2e-5 in double precision
  if (dst.x != 0.0) {
    const double temp_y_k = dst.y / dst.x;
    const double temp_z_k = dst.z / dst.x;
    double x = std::sqrt(kUnitSquared / (1.0 + temp_y_k * temp_y_k + temp_z_k * temp_z_k));
    if (dst.x < 0.0) x = -x;
    return Pos(x, x * temp_y_k, x * temp_z_k);
  }
  if (dst.y != 0.0) {
    const double temp_z_k = dst.z / dst.y;
    double y = std::sqrt(kUnitSquared / (temp_z_k * temp_z_k + 1.0));
    if (dst.y < 0.0) y = -y;
    return Pos(0.0, y, y * temp_z_k);
  }
  // A line of no length at all takes +z; it has no room for a step unless the speed is 0.
  return Pos(0.0, 0.0, dst.z < 0.0 ? -kRampUnitM : kRampUnitM);
}

}  // namespace

bool PlanRampedLine(const Context& arm, const RoadPoint& start, const RoadPoint& end,
                    std::vector<RoadPoint>& road, int speed) {
  if (!PosesAgree(start, end, kLinePairPositionM, kLinePairOrientation)) {
    arm.observer.Hear({Event::kRampedLineNoPair, &start, &end});
    return false;
  }
  const Pos dst = end.position - start.position;
  const double length = LengthOf(dst);
  const double min_distance = ShortestRampedLine(speed);
  // Too short for its ramps; a NaN length takes this branch as well.
  if (!(length >= min_distance)) return true;

  const Pos unit = UnitStep(dst);
  // The pair check keeps the length, and so the count, far inside an int.
  const int step_count =
      speed > 0 ? static_cast<int>((length - min_distance) / (speed * kRampUnitM)) : 0;
  road.clear();
  // Up with the start, cruise, down, and the end point; a negative speed walks nothing.
  road.reserve(2 * static_cast<size_t>(std::max(speed, 0)) + static_cast<size_t>(step_count) + 2);
  RoadPoint point = start;
  // Moves on by `units` unit steps, solves against the joints before, and appends.
  const auto advance = [&](RampPhase phase, int units) {
    const Pos step = Scaled(unit, units);
    point.position = point.position + step;
    if (!SolveLineStep(arm, point, step, point.jointpos, kLineStepRad)) {
      const bool down = phase == RampPhase::kDown;
      arm.observer.Hear({down ? Event::kRampDownUnsolved : Event::kLinePointUnsolved, &point,
                         nullptr, down ? speed - units : static_cast<int>(road.size())});
      return false;
    }
    road.push_back(point);
    return true;
  };
  // From standstill, the start itself solved, down to one unit: the end point closes the ramp.
  if (!WalkRamp(speed, step_count, 1, advance)) return false;
  road.push_back(end);
  return true;
}

}  // namespace qal
