#include "failing_point.h"

#include <algorithm>
#include <cmath>

#include "../plan/axis_move.h"

namespace qal {

ToolPace::ToolPace(const LinePath& line, const LineLimits& limits) {
  const auto of_way = [&line](double of_tool, double of_turn) {
    return std::min(of_tool / line.length_m(), of_turn / line.angle_rad());
  };
  const SevenPhases phases =
      FastestPhases(1, {of_way(limits.speed_m_s, limits.turn_speed_rad_s),
                        of_way(limits.acceleration_m_s2, limits.turn_acceleration_rad_s2),
                        of_way(limits.jerk_m_s3, limits.turn_jerk_rad_s3)});
  AddPieces(phases, 0, 1, motion_);
  duration_s_ = phases.duration_s();
}

double ToolPace::AlongAt(double time_s) const {
  return time_s < duration_s_ ? motion_.At(time_s).position : 1;
}

double ToolPace::SpeedAt(double time_s) const { return motion_.At(time_s).velocity; }

double ToolPace::TimeAt(double along) const {
  double before = 0;
  double after = duration_s_;
  for (int i = 0; i < 60; ++i) {
    const double middle = (before + after) / 2;
    (AlongAt(middle) > along ? after : before) = middle;
  }
  return after;
}

FailingPoint FirstBeyond(const LinePath& line, const ToolPace& pace, double along, double cycle_s) {
  FailingPoint point;
  point.index = static_cast<size_t>(std::ceil(pace.TimeAt(along) / cycle_s));
  // What begins to fail where the line does fails there.
  if (along <= 0) point.index = 0;
  point.time_s = std::min(static_cast<double>(point.index) * cycle_s, pace.duration_s());
  point.along = std::clamp(pace.AlongAt(point.time_s), 0.0, 1.0);
  point.distance_m = point.along * line.length_m();
  point.pose = line.PoseAt(point.along);
  return point;
}

}  // namespace qal
