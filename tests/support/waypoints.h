#ifndef QAL_TESTS_SUPPORT_WAYPOINTS_H_
#define QAL_TESTS_SUPPORT_WAYPOINTS_H_

#include <algorithm>
#include <array>
#include <limits>

#include "core/roadpoint.h"
#include "scripted_solver.h"

inline constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr double kPi = 3.14159265358979323846;

/// All that a waypoint holds, in its order, for exact comparison and for print.
using Numbers = std::array<double, 14>;

inline Numbers All(const RoadPoint& point) {
  const auto& [p, q, j, flag] = point;
  return {p.x, p.y, p.z, q.w, q.x, q.y, q.z, j[0], j[1], j[2], j[3], j[4], j[5], flag ? 1.0 : 0.0};
}

inline std::array<double, 3> All(const Pos& p) { return {p.x, p.y, p.z}; }
inline std::array<double, 4> All(const Ori& q) { return {q.w, q.x, q.y, q.z}; }

inline RoadPoint Waypoint(const Pos& position, const Joints& joints = {},
                          const Ori& orientation = Ori(1, 0, 0, 0)) {
  RoadPoint point;
  point.position = position;
  point.orientation = orientation;
  std::copy(joints.begin(), joints.end(), point.jointpos);
  return point;
}

#endif  // QAL_TESTS_SUPPORT_WAYPOINTS_H_
