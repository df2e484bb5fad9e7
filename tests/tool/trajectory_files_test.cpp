#include <gtest/gtest.h>

#include "../../tools/qal/trajectory_csv.h"
#include "../../tools/qal/trajectory_json.h"

namespace qal::tools {
namespace {

// Joint 1 goes 0, 0.01, 0.03 rad, one cycle apart; the tool 1 mm, then 2 mm along z.
Trajectory TwoSteps(bool poses) {
  Trajectory trajectory(3);
  const double joint[] = {0.0, 0.01, 0.03};
  const double height[] = {0.5, 0.501, 0.503};
  for (size_t i = 0; i < 3; ++i) {
    trajectory[i] = {static_cast<double>(i) / 200.0, {joint[i], 0, -0.0, 1e-9, 0.1, 0.3}, {}};
    if (poses) trajectory[i].pose = Sample::Pose{{0.1, 0.2, height[i]}, {0, 1, 0, 0}};
  }
  return trajectory;
}

TEST(TrajectoryCsv, HasTheHeaderFirstAndPoseColumnsOnlyWhereThereIsAPose) {
  EXPECT_EQ(
      "time_s,q1_rad,q2_rad,q3_rad,q4_rad,q5_rad,q6_rad\n"
      "0,0,0,-0,1e-09,0.1,0.3\n"
      "0.005,0.01,0,-0,1e-09,0.1,0.3\n"
      "0.01,0.03,0,-0,1e-09,0.1,0.3\n",
      ToCsv(TwoSteps(false), false));
  const std::string csv = ToCsv(TwoSteps(true), false);
  EXPECT_EQ(0u, csv.find("time_s,q1_rad,q2_rad,q3_rad,q4_rad,q5_rad,q6_rad,"
                         "x_m,y_m,z_m,qw,qx,qy,qz\n"
                         "0,0,0,-0,1e-09,0.1,0.3,0.1,0.2,0.5,0,1,0,0\n"));
}

}  // namespace
}  // namespace qal::tools
