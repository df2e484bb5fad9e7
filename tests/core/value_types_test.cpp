#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <iomanip>
#include <iostream>
#include <type_traits>

#include "captured.h"
#include "core/roadpoint.h"
#include "waypoints.h"

// Binary interface: callers built earlier rely on sizes, offsets and on how each type is passed by
// value (a copy that isn't trivial goes by reference).
static_assert(sizeof(Pos) == 24 && offsetof(Pos, y) == 8 && offsetof(Pos, z) == 16);
static_assert(sizeof(Roz) == 24 && offsetof(Roz, y) == 8 && offsetof(Roz, z) == 16);
static_assert(sizeof(Ori) == 32 && offsetof(Ori, w) == 0 && offsetof(Ori, x) == 8 &&
              offsetof(Ori, y) == 16 && offsetof(Ori, z) == 24);
static_assert(sizeof(RoadPoint) == 112 && offsetof(RoadPoint, orientation) == 24 &&
              offsetof(RoadPoint, jointpos) == 56 && offsetof(RoadPoint, ik_flag) == 104);
static_assert(!std::is_trivially_copy_constructible_v<Pos> && std::is_trivially_copyable_v<Ori> &&
              std::is_trivially_copyable_v<Roz> &&
              !std::is_trivially_copy_constructible_v<RoadPoint>);

namespace {

const Numbers kCounted = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 1.0, 1.1, 1.2, 1.3, 1.0};

RoadPoint From(const Numbers& n) {
  RoadPoint point = Waypoint(Pos(n[0], n[1], n[2]), {n[7], n[8], n[9], n[10], n[11], n[12]},
                             Ori(n[3], n[4], n[5], n[6]));
  point.ik_flag = n[13] != 0.0;
  return point;
}

TEST(ValueTypes, StartAtZeroAndCarryEveryNumberWhenCopied) {
  EXPECT_EQ(All(RoadPoint()), Numbers{});
  EXPECT_TRUE(Roz().x == 0.0 && Roz().y == 0.0 && Roz().z == 0.0);
  RoadPoint point = From(kCounted);
  const RoadPoint copy(point);
  EXPECT_EQ(All(copy), kCounted);
  RoadPoint assigned;
  assigned = copy;
  EXPECT_EQ(All(assigned), kCounted);
  assigned = *&assigned;
  EXPECT_EQ(All(assigned), kCounted);
  EXPECT_EQ(All(Pos(1, 2, 3) + Pos(10, 20, 40)), All(Pos(11, 22, 43)));
  EXPECT_EQ(All(Pos(1, 2, 3) - Pos(10, 20, 40)), All(Pos(-9, -18, -37)));
}

TEST(ValueTypes, AreEqualOnlyWhenEveryNumberIs) {
  EXPECT_TRUE(From(kCounted) == From(kCounted));
  for (size_t i = 0; i < kCounted.size(); ++i) {
    for (const double value : {0.0, kNan}) {
      Numbers other = kCounted;
      other[i] = value;
      RoadPoint changed = From(other);
      if (i == 13 && value != 0.0) continue;  // the flag has only two values
      EXPECT_FALSE(changed == From(kCounted)) << "number " << i;
      EXPECT_EQ(changed == RoadPoint(changed), value == 0.0)
          << "number " << i;  // NaN equals nothing
    }
  }
  EXPECT_FALSE(Ori(1, 0, 0, 0) == Ori(-1, 0, 0, 0));  // the same rotation
}

// 0.1234567 becomes 123457 times the single-precision 1e-6, a quaternion part keeps 4 decimals.
TEST(ValueTypes, CutTheirDecimalsWhereTheyFit) {
  constexpr double kMicro = 9.999999974752427e-07;
  constexpr double kTenthMilli = 9.999999747378752e-05;
  RoadPoint point = From({0.1234567, -1.2345678, 3e9, 0.12345, -0.5, 0, 1,  //
                          -0.1234567, kNan, -3e9, 1, 0, 2, 1});
  point.SectionRoadPoint();
  EXPECT_TRUE(std::isnan(point.jointpos[1]));
  point.jointpos[1] = 0;
  EXPECT_EQ(All(point), (Numbers{123457 * kMicro, -1234567 * kMicro, 3e9, 1235 * kTenthMilli,
                                 -4999 * kTenthMilli, 0, 10000 * kTenthMilli, -123456 * kMicro, 0,
                                 -3e9, 1000000 * kMicro, 0, 2000000 * kMicro, 1}));
}

TEST(ValueTypes, PrintOneBlockWhateverTheStreamsFormat) {
  const std::ios_base::fmtflags flags = std::cout.flags();
  std::cout << std::hex << std::fixed << std::setprecision(2);
  EXPECT_EQ(Printed(From({0.123456789012, -2, 1e-7, 1, 0, 0, 0, 0.5, -0.25, 3, 0, 0, kNan, 1})),
            "position [m]: x 0.123456789  y -2  z 1e-07\n"
            "orientation (quaternion): w 1  x 0  y 0  z 0\n"
            "joints [rad]:  q1 0.5  q2 -0.25  q3 3  q4 0  q5 0  q6 nan\n"
            "ik_flag: true\n");
  std::cout.flags(flags);
  EXPECT_NE(Printed(RoadPoint()).find("ik_flag: false\n"), std::string::npos);
}

}  // namespace
