#ifndef QAL_TESTS_SUPPORT_WAYPOINTS_H_
#define QAL_TESTS_SUPPORT_WAYPOINTS_H_

#include <algorithm>
#include <array>
#include <cmath>
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

/// Hamilton product.
inline Ori Product(const Ori& a, const Ori& b) {
  return Ori(
      a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z, a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
      a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x, a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w);
}

inline RoadPoint Waypoint(const Pos& position, const Joints& joints = {},
                          const Ori& orientation = Ori(1, 0, 0, 0)) {
  RoadPoint point;
  point.position = position;
  point.orientation = orientation;
  std::copy(joints.begin(), joints.end(), point.jointpos);
  return point;
}

/// Expects each number within `tolerance`; NaN only where NaN is expected.
template <size_t kCount>
void ExpectNear(const std::array<double, kCount>& found, const std::array<double, kCount>& expected,
                double tolerance) {
  for (size_t i = 0; i < kCount; ++i) {
    if (std::isnan(expected[i])) {
      EXPECT_TRUE(std::isnan(found[i])) << "number " << i;
    } else {
      EXPECT_NEAR(found[i], expected[i], tolerance) << "number " << i;
    }
  }
}

#endif  // QAL_TESTS_SUPPORT_WAYPOINTS_H_
