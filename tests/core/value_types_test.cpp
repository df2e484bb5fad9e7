#include <cstring>
#include <iostream>
#include <type_traits>

#include "waypoints.h"

// Binary interface: callers built earlier rely on sizes, offsets and on how each type is passed by
// value (a copy that isn't trivial goes by reference).
static_assert(sizeof(Pos) == 24 && offsetof(Pos, y) == 8 && offsetof(Pos, z) == 16);
static_assert(sizeof(Roz) == 24 && offsetof(Roz, y) == 8 && offsetof(Roz, z) == 16);
static_assert(sizeof(Ori) == 32 && offsetof(Ori, x) == 8 && offsetof(Ori, z) == 24);
static_assert(sizeof(RoadPoint) == 112 && offsetof(RoadPoint, orientation) == 24);
static_assert(offsetof(RoadPoint, jointpos) == 56 && offsetof(RoadPoint, ik_flag) == 104);
static_assert(std::is_trivially_copyable_v<Ori> && std::is_trivially_copyable_v<Roz>);
static_assert(!std::is_trivially_copy_constructible_v<Pos>);
static_assert(!std::is_trivially_copy_constructible_v<RoadPoint>);

namespace {

const Numbers kCounted = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 1.0, 1.1, 1.2, 1.3, 1};

TEST(ValueTypes, StartAtZeroAndCarryEveryNumber) {
  EXPECT_EQ(All(RoadPoint()), Numbers{});
  EXPECT_EQ(Roz().x + Roz().y + Roz().z, 0.0);
  RoadPoint assigned;
  assigned = From(kCounted);
  EXPECT_EQ(std::memcmp(&assigned, &kCounted, 104), 0);
  EXPECT_EQ(All(RoadPoint(assigned)), kCounted);
  EXPECT_EQ(All(Pos(1, 2, 3) + Pos(10, 20, 40)), All(Pos(11, 22, 43)));
  EXPECT_EQ(All(Pos(1, 2, 3) - Pos(10, 20, 40)), All(Pos(-9, -18, -37)));
}

TEST(ValueTypes, AreEqualOnlyWhenEveryNumberIs) {
  EXPECT_TRUE(From(kCounted) == From(kCounted));
  EXPECT_FALSE(Ori(1, 0, 0, 0) == Ori(-1, 0, 0, 0));  // the same rotation
  for (size_t i = 0; i < kCounted.size(); ++i) {
    Numbers other = kCounted;
    other[i] = 0.0;
    EXPECT_FALSE(From(kCounted) == From(other)) << i;
    other[i] = kNan;  // a flag of NaN is true
    EXPECT_EQ(From(other) == From(other), i == 13) << i;
  }
}

TEST(ValueTypes, PrintOneBlockWhateverTheStreamsFormat) {
  const std::ios_base::fmtflags flags = std::cout.setf(std::ios_base::fixed | std::ios_base::hex);
  std::cout.width(400);
  EXPECT_EQ(Printed(From({0.123456789012, -2, 1e-7, 1, 0, 0, 0, 0.5, -0.25, 3, 0, 0, kNan, 1})),
            "position [m]: x 0.123456789  y -2  z 1e-07\n"
            "orientation (quaternion): w 1  x 0  y 0  z 0\n"
            "joints [rad]:  q1 0.5  q2 -0.25  q3 3  q4 0  q5 0  q6 nan\n"
            "ik_flag: true\n");
  EXPECT_EQ(std::cout.width(0), 400);
  std::cout.flags(flags);
  EXPECT_NE(Printed(RoadPoint()).find("\nik_flag: false\n"), std::string::npos);
}

}  // namespace
