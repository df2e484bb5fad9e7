#include <gtest/gtest.h>

#include <cmath>

#include "private_members.h"
#include "waypoints.h"

namespace {

TEST(Scalars, TakeTheSignOfZeroAsPlusAndOfNanAsMinus) {
  EXPECT_EQ(hidden::SIGN(0.0), 1.0);
  EXPECT_EQ(hidden::SIGN(-0.0), 1.0);
  EXPECT_EQ(hidden::SIGN(-1e-300), -1.0);
  EXPECT_EQ(hidden::SIGN(kNan), -1.0);
  EXPECT_EQ(hidden::NORM(3, 4, 0, 0), 5.0);
  EXPECT_EQ(hidden::NORM(1, 1, 1, 1), 2.0);
}

}  // namespace
