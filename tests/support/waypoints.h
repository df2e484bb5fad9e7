#ifndef QAL_TESTS_SUPPORT_WAYPOINTS_H_
#define QAL_TESTS_SUPPORT_WAYPOINTS_H_

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "captured.h"
#include "kinematics/ikfunc.h"
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

/// The rotation about x, y or z.
inline Ori Turn(double angle_rad, int axis) {
  const double sine = std::sin(angle_rad / 2);
  return Ori(std::cos(angle_rad / 2), axis == 0 ? sine : 0, axis == 1 ? sine : 0,
             axis == 2 ? sine : 0);
}

/// The question for this position of the gantry.
inline SolverPose GantryAt(const Pos& p) { return GantryForward({p.x, p.y, p.z}); }

/// The waypoint that holds these numbers.
inline RoadPoint From(const Numbers& numbers) {
  RoadPoint point;
  point.position = Pos(numbers[0], numbers[1], numbers[2]);
  point.orientation = Ori(numbers[3], numbers[4], numbers[5], numbers[6]);
  std::copy_n(&numbers[7], 6, point.jointpos);
  point.ik_flag = numbers[13] != 0.0;
  return point;
}

inline RoadPoint Waypoint(const Pos& p, const Joints& q = {}, const Ori& o = Ori(1, 0, 0, 0)) {
  return From({p.x, p.y, p.z, o.w, o.x, o.y, o.z, q[0], q[1], q[2], q[3], q[4], q[5], 0});
}

/// `point` with these joints and its flag set.
inline RoadPoint Solved(RoadPoint point, const std::vector<double>& joints) {
  std::copy_n(joints.begin(), 6, point.jointpos);
  point.ik_flag = true;
  return point;
}

/// Expects each number within `tolerance`; NaN only where NaN is expected.
template <size_t kCount>
void ExpectNear(const std::array<double, kCount>& found, const std::array<double, kCount>& expected,
                double tolerance) {
  for (size_t i = 0; i < kCount; ++i) {
    if (std::isnan(found[i]) && std::isnan(expected[i])) continue;
    EXPECT_NEAR(found[i], expected[i], tolerance) << "number " << i;
  }
}

#endif  // QAL_TESTS_SUPPORT_WAYPOINTS_H_
