#include "waypoints.h"

namespace {

using Cases = std::vector<std::pair<double, double>>;

TEST(Scalars, TakeTheSignOfZeroAsPlusAndOfNanAsMinus) {
  for (const auto& [x, sign] : Cases{{0.0, 1}, {-0.0, 1}, {2, 1}, {-1e-300, -1}, {kNan, -1}}) {
    EXPECT_EQ(Ikfunc::SIGN(x), sign) << x;
  }
  EXPECT_EQ(Ikfunc::NORM(1, -5, 3, 1), 6.0);
}

// Half a unit is added, the fraction is cut toward zero, and the unit is 1e-6 (1e-4) held in single
// precision. A scaled value of 2147483648 and more, or of -2147483649 and less, doesn't fit.
TEST(Scalars, CutDecimalsWhereTheyFit) {
  const Cases six = {{1.2345678, 1.2345679968830154},  {-1.2345678, -1.234566996883018},
                     {0.5, 0.49999999873762135},       {-1.4e-06, 0.0},
                     {2147.483647, 2147.483641578125}, {-2147.4836489, -2147.483642578125}};
  for (const auto& [number, cut] : six) EXPECT_EQ(Ikfunc::SectionNum(number), cut) << number;
  for (const double large : {2147.4836475, -2147.4836496, HUGE_VAL, -HUGE_VAL}) {
    EXPECT_EQ(Ikfunc::SectionNum(large), large);
  }
  EXPECT_TRUE(std::isnan(Ikfunc::SectionNum(kNan)));
  const Cases four = {{0.70716, 0.7071999821346253}, {-0.70716, -0.7070999821371515}};
  for (const auto& [number, cut] : four) EXPECT_EQ(Ikfunc::SectionFourNum(number), cut) << number;
}

// Each number in turn is off by `part` of its tolerance. Equality passes after rounding to float.
TEST(Scalars, CompareWithinATolerance) {
  for (const auto& [part, same] :
       Cases{{1, 1}, {1 + 1e-9, 1}, {1 + 1e-6, 0}, {-1 - 1e-6, 0}, {INFINITY, 0}, {kNan, 1}}) {
    for (size_t i = 0; i < 13; ++i) {
      Numbers numbers = {};
      numbers[i] = part * (i < 3 ? 0.25 : i < 7 ? 0.125 : 0.5);
      const RoadPoint zero;
      EXPECT_EQ(Ikfunc::PositionCompare(From(numbers), zero, 0.25f, 0.125f), i > 6 || same) << i;
      EXPECT_EQ(Ikfunc::JointCompare(zero, From(numbers), 0.5f), i < 7 || same) << i;
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

}  // namespace
