#ifndef QAL_TESTS_SUPPORT_WAYPOINTS_H_
#define QAL_TESTS_SUPPORT_WAYPOINTS_H_

#include <gtest/gtest.h>
#include <stdio_ext.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include "kinematics/ikfunc.h"

inline constexpr double kNan = NAN;

/// All that a waypoint holds, in its order, for exact comparison and for print.
using Numbers = std::array<double, 14>;
using Joints = std::array<double, 6>;

inline std::array<double, 3> All(const Pos& p) { return {p.x, p.y, p.z}; }
inline std::array<double, 4> All(const Ori& q) { return {q.w, q.x, q.y, q.z}; }
inline Numbers All(const RoadPoint& point) {
  const auto& [p, q, j, flag] = point;
  return {p.x, p.y, p.z, q.w, q.x, q.y, q.z, j[0], j[1], j[2], j[3], j[4], j[5], flag ? 1.0 : 0.0};
}
inline std::vector<Numbers> All(const std::vector<RoadPoint>& points) {
  std::vector<Numbers> all;
  for (const RoadPoint& point : points) all.push_back(All(point));
  return all;
}

/// The waypoint that holds these numbers.
inline RoadPoint From(const Numbers& n) {
  RoadPoint point;
  point.position = Pos(n[0], n[1], n[2]);
  point.orientation = Ori(n[3], n[4], n[5], n[6]);
  std::copy_n(&n[7], 6, point.jointpos);
  point.ik_flag = n[13] != 0.0;
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

/// Hamilton product.
inline Ori Product(const Ori& a, const Ori& b) {
  return Ori(
      a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z, a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
      a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x, a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w);
}

/// The rotation about x, y or z.
inline Ori Turn(double angle_rad, size_t axis) {
  std::array<double, 3> part = {};
  part[axis] = std::sin(angle_rad / 2);
  return Ori(std::cos(angle_rad / 2), part[0], part[1], part[2]);
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

/// What a call returned and wrote: result, standard output, standard error.
template <typename Result>
using Outcome = std::tuple<Result, std::string, std::string>;
using BoolOutcome = Outcome<bool>;
inline const BoolOutcome kSilentTrue(true, "", "");
inline const BoolOutcome kSilentFalse(false, "", "");

/// What the operations that query the solver write when it finds nothing, and nothing admissible.
inline const std::string kUnsolved = "Failed to get  ik solution ArmJointIK \n";
inline const std::string kInadmissible = "Failed to get joint ik solution\n";

/// Runs `call` and says all that came of it, as seen at file descriptors 1 and 2.
template <typename Call>
auto Captured(Call call) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const auto result = call();
  const size_t unflushed = __fpending(stdout);
  const std::string errors = testing::internal::GetCapturedStderr();
  const std::string output = testing::internal::GetCapturedStdout();
  EXPECT_EQ(unflushed, 0u) << output;
  return std::tuple(result, output, errors);
}

/// The block that `printfPoint` writes.
inline std::string Printed(RoadPoint point) {
  return std::get<1>(Captured([&] { return point.printfPoint(), 0; }));
}

#endif  // QAL_TESTS_SUPPORT_WAYPOINTS_H_
