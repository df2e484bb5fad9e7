#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "qal_run.h"

namespace {

using Line = InOwnFolder;
using Joint = InOwnFolder;

const std::string kFrom = " --from 0 0.3 0.2 0 1 0 ";

double Way(const Json& from, const Json& to) {
  const auto step = [&](int axis) { return to[axis].get<double>() - from[axis].get<double>(); };
  return std::hypot(step(0), step(1), step(2));
}

// 0.1001 m: fixed at speed 10, steps of 0.0004 m, 250 of them, divided by 251, the last one
// doubled; precision 1, 500 equal steps; ramp at 10, 0.0022 m of ramps, 489 steps of 0.0002
// m.
TEST_F(Line, HasTheStepsOfItsProfile) {
  const struct {
    const char* arguments;
    size_t points;
    double first_step_m;  // of the tool, from point 0 to point 1
    double largest_step_m;
  } cases[] = {
      {"--profile fixed --speed 10", 251, 0.1001 / 251, 0.2002 / 251},
      {"--profile fixed --precision 1", 501, 0.1001 / 500, 0.1001 / 500},
      {"--speed 10", 511, 0.00002, 0.0002},
  };
  for (const auto& line : cases) {
    SCOPED_TRACE(line.arguments);
    const Json plan = QalJson("line" + kFrom + "--by 0 .1001 0 " + line.arguments);
    const Json& tool = plan["position_m"];
    ASSERT_EQ(line.points, tool.size());
    EXPECT_NEAR(line.first_step_m, Way(tool[0], tool[1]), 1e-9);
    double largest_m = 0.0;
    for (size_t i = 1; i < tool.size(); ++i) {
      largest_m = std::max(largest_m, Way(tool[i - 1], tool[i]));
      EXPECT_EQ(static_cast<double>(i) / 200.0, plan["time_s"][i]);
    }
    EXPECT_NEAR(line.largest_step_m, largest_m, 1e-9);
    EXPECT_NEAR(0.1001, Way(tool.front(), tool.back()), 1e-12);
  }
}

TEST_F(Line, EndsWithTheJointsGivenOrWithTheOnesItArrivesWith) {
  const Json by_pose = QalJson("line" + kFrom + "--by 0 0.3 0 --speed 50")["joints_rad"];
  ASSERT_EQ(351, by_pose.size());
  const Json& end = by_pose[350];
  for (size_t j = 0; j < 6; ++j) {
    EXPECT_NEAR(by_pose[349][j].get<double>(), end[j].get<double>(), 1e-3);
  }
  // The same rotation as the start's, with the other sign.
  const Json turned = QalJson("line" + kFrom +
                              "--to-pose 0.524128326 0.3 0.530868682 -0.035390772 0 -0.999373555 0 "
                              "--speed 50");
  EXPECT_EQ(351, turned["time_s"].size());
  const std::string joints = end.dump().substr(1, end.dump().size() - 2);
  const Json by_joints = QalJson("line" + kFrom + "--to " + joints + " --speed 50")["joints_rad"];
  EXPECT_EQ(351, by_joints.size());
  EXPECT_EQ(end, by_joints.back());
}

TEST_F(Line, PrintsASummaryAndWritesTheSameFileWhole) {
  const std::string plan = "line" + kFrom + "--by 0 0.3 0 --speed 50";
  EXPECT_EQ(1, Qal(plan + " --mm --csv line.csv").status);  // 0.3 mm are too short, and ...
  EXPECT_EQ("", Files());                                   // ... leave no file
  const ToolRun whole = Qal(plan + " --csv line.csv");
  EXPECT_EQ(0, whole.status);
  EXPECT_EQ("", whole.err);
  EXPECT_EQ(Qal(plan + " --csv -").out, FileContent("line.csv"));
  for (const char* row :
       {"points                                   351\n",
        "duration [s]                             1.750\n",
        "way of the tool [m]                      0.300000000\n", ", joint 6, to point 50\n"}) {
    EXPECT_NE(std::string::npos, whole.out.find(row)) << whole.out;
  }
}

// Jerk 10, 0.01 m: a phase of 79 ms, cut to 75 ms, 15 points, 0.0703125 of the line.
TEST_F(Line, SaysWhereTheSCurveEnds) {
  const std::tuple<std::string, size_t, const char*> cases[] = {
      {"--mm --by 10 0 0 --acc 1000 --jerk 10000", 15,
       "note: the S-curve plan ends after its first phase, as it is made to: 15 points, "
       "0.703125 of 10 mm (7.03 %) along the line"},
      {"--by 0.0001 0 0 --acc 1 --jerk 10", 2,
       "note: the line is too short for an S-curve: the plan is its two ends"}};
  for (const auto& [arguments, points, note] : cases) {
    const ToolRun plan = Qal("line --json --profile s-curve --motor-rpm 3000" + kFrom + arguments);
    EXPECT_EQ(note, plan.LastLine());
    EXPECT_EQ(points, Json::parse(plan.out)["time_s"].size());
  }
}

// Fixed: 0.5 rad in steps of speed 10, 0.001745329 rad. Ramp: 5 units of 0.01 degree at the top,
// 0.5 rad in 2 * 5 + 566 + 1. Trapezoid at 50 % and 10000 rpm/s, joint 1 by 1 rad: 492 cycles.
TEST_F(Joint, HasThePointsOfItsProfile) {
  const std::tuple<const char*, size_t, const char*> cases[] = {
      {"--to 0.5 0 0 0 0 0 --profile fixed --speed 10", 287, ""},
      {"--to 0.5 0 0 0 0 0 --profile ramp --speed 10", 577, ""},
      {"--to 1 0.5 0 0 0 -0.3 --speed 50 --acc 10000", 492, "the joint num is492\n"}};
  for (const auto& [arguments, points, note] : cases) {
    const ToolRun plan = Qal(std::string("joint --json --from 0 0 0 0 0 0 ") + arguments);
    EXPECT_EQ(points, Json::parse(plan.out)["time_s"].size()) << arguments;
    EXPECT_EQ(note, plan.err);
  }
}

}  // namespace
