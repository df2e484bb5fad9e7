#include <algorithm>
#include <cmath>

#include "../arm_constants.h"
#include "../diagnostics.h"
#include "../ikfunc.h"
#include "line_walk.h"
#include "ramp_walk.h"

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
  return Pos(0.0, 0.0, dst.z < 0.0 ? -qal::kRampUnitM : qal::kRampUnitM);
}

}  // namespace

bool Ikfunc::CountLineToBuffer(RoadPoint s_point, RoadPoint e_point,
                               std::vector<RoadPoint>* point_road, int speed) {
  if (!PositionCompare(s_point, e_point, qal::kLinePairPositionM, qal::kLinePairOrientation)) {
    qal::WriteLine(qal::kRampedLinePairLine);
    s_point.printfPoint();
    e_point.printfPoint();
    return false;
  }
  const Pos dst = e_point.position - s_point.position;
  const double length = NORM(dst.x, dst.y, dst.z, 0);
  const double min_distance = speed * ((speed + 1.0) * qal::kRampUnitM);
  // Too short for its ramps; a NaN length takes this branch as well.
  if (!(length >= min_distance)) return true;

  const Pos unit = UnitStep(dst);
  // The pair check keeps the length, and so the count, far inside an int.
  const int step_count =
      speed > 0 ? static_cast<int>((length - min_distance) / (speed * qal::kRampUnitM)) : 0;
  point_road->clear();
  // Up with the start, cruise, down, and the end point; a negative speed walks nothing.
  point_road->reserve(2 * static_cast<size_t>(std::max(speed, 0)) +
                      static_cast<size_t>(step_count) + 2);
  RoadPoint temp_point = s_point;
  // Moves on by `units` unit steps, solves against the joints before, and appends.
  const auto advance = [&](qal::RampPhase phase, int units) {
    const Pos temp_dst = qal::Scaled(unit, units);
    temp_point.position = temp_point.position + temp_dst;
    if (!ArmLineMoveIk(temp_point, temp_dst, temp_point.jointpos, qal::kLineStepRad)) {
      if (phase == qal::RampPhase::kDown) qal::WriteLine(qal::kRampedLineIkLine, speed - units);
      temp_point.printfPoint();
      return false;
    }
    point_road->push_back(temp_point);
    return true;
  };
  // From standstill, the start itself solved, down to one unit: the end point closes the ramp.
  if (!qal::WalkRamp(speed, step_count, 1, advance)) return false;
  point_road->push_back(e_point);
  return true;
}
