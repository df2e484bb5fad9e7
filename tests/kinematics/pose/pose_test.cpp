#include "waypoints.h"

namespace {

using Cases = std::vector<std::pair<double, double>>;

TEST(Scalars, TakeTheSignOfZeroAsPlusAndOfNanAsMinus) {
  for (const auto& [x, sign] : Cases{{0.0, 1}, {-0.0, 1}, {2, 1}, {-1e-300, -1}, {kNan, -1}}) {
    EXPECT_EQ(Ikfunc::SIGN(x), sign) << x;
  }
}

// Half a unit is added, the fraction is cut toward zero, and the unit is 1e-6 (1e-4) held in single
// precision. A scaled value of 2147483648 and more, or of -2147483649 and less, doesn't fit.
TEST(Scalars, CutDecimalsWhereTheyFit) {
  const Cases six = {{2147.483647, 2147.483641578125}, {-2147.4836489, -2147.483642578125}};
  for (const auto& [number, cut] : six) EXPECT_EQ(Ikfunc::SectionNum(number), cut) << number;
  for (const double large : {2147.4836475, -2147.4836496, HUGE_VAL, -HUGE_VAL}) {
    EXPECT_EQ(Ikfunc::SectionNum(large), large);
  }
  EXPECT_TRUE(std::isnan(Ikfunc::SectionNum(kNan)));
}

// Each number in turn is off by `part` of its tolerance. Equality passes after rounding to float.
TEST(Scalars, CompareWithinATolerance) {
  for (const auto& [part, same] :
       Cases{{1, 1}, {1 + 1e-9, 1}, {1 + 1e-6, 0}, {-1 - 1e-6, 0}, {INFINITY, 0}, {kNan, 1}}) {
    for (size_t i = 0; i < 13; ++i) {
      Numbers numbers = {};
      numbers[i] = part * (i < 3 ? 0.25 : i < 7 ? 0.125 : 0.5);
      const RoadPoint zero;
      EXPECT_EQ(Ikfunc::PositionCompare(From(numbers), zero, 0.25f, 0.125f), i > 6 || same != 0)
          << i;
      EXPECT_EQ(Ikfunc::JointCompare(zero, From(numbers), 0.5f), i < 7 || same != 0) << i;
    }
  }
  for (const auto& [difference, same] :  // in double precision
       Cases{{0.00872664, 1}, {0.0087266400000001, 0}, {-0.0088, 0}, {kNan, 1}}) {
    for (size_t j = 0; j < 6; ++j) {
      Joints a = {};
      a[j] = difference;
      EXPECT_EQ(Ikfunc::PointAngTest(a.data(), Joints().data()), same) << difference;
    }
  }
}

using Triple = std::array<double, 3>;

constexpr double kRounding = 2e-15;  // a few units in the last place of numbers up to pi

Triple EulerOf(const Ori& q) {
  Triple angles;
  Ikfunc::QuaternionToEulerAngle(q, angles.data());
  return angles;
}

// roll = atan2(2(wx + yz), 1 - 2(xx + yy)), pitch = asin(2(wy - xz)), yaw = atan2(2(wz + xy),
// 1 - 2(yy + zz)). For the last one: 0.32 over 0.8; 0.44; 0.64 over -0.16.
TEST(Euler, ReadsTheQuaternionAsItIs) {
  ExpectNear(EulerOf(Ori(-1, 0, 0, 0)), {0, 0, 0}, 0);
  ExpectNear(EulerOf(Ori(1, 1, 0, 0)), {2.0344439357957027, 0, 0}, kRounding);
  ExpectNear(EulerOf(Ori(0.7072, 0, 0.7072, 0)), {M_PI, kNan, M_PI}, kRounding);
  ExpectNear(EulerOf(Ori(0.5, -0.1, 0.3, 0.7)),
             {std::atan2(0.32, 0.8), std::asin(0.44), std::atan2(0.64, -0.16)}, kRounding);
}

TEST(Euler, DifferencesAreEndMinusStartAndNotWrapped) {
  RoadPoint start = From({1, 2, 3, 0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 1});
  RoadPoint end = start;
  start.orientation = Turn(3.1, 2);
  end.orientation = Product(Turn(-3.1, 2), Turn(0.5, 0));
  Triple change;
  Ikfunc::QuaternionToEulerDis(start, end, change.data());
  ExpectNear(change, {0.5, 0, -6.2}, 1e-14);
  Ikfunc::QuaternionAddEuler(start, change.data());  // the orientation alone
  ExpectNear(All(start), All(end), kRounding);
}

const Ori kSome(0.5, -0.1, 0.3, 0.7);  // not of unit length

// The increment multiplies on the right; the first component that isn't zero takes it all.
TEST(FrameMoves, TurnAboutOneToolAxis) {
  const Ori nan(kNan, kNan, kNan, kNan);
  const std::pair<Roz, Ori> cases[] = {{Roz(0.2, 0.5, -0.1), Turn(0.2, 0)},
                                       {Roz(0, 0.3, 0.4), Turn(0.3, 1)},
                                       {Roz(0, 0, -0.1), Turn(-0.1, 2)},
                                       {Roz(0, -0.0, 0), Ori(1, 0, 0, 0)},
                                       {Roz(kNan, 1, 0), nan},
                                       {Roz(0, kNan, 1), nan}};
  for (const auto& [turn, increment] : cases) {
    ExpectNear(All(Ikfunc::EndRotXYZ(kSome, turn)), All(Product(kSome, increment)), kRounding);
  }
}

}  // namespace
