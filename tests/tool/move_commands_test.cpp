#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "run_qal.h"

namespace {

using Row = std::vector<double>;  // time, six joints, x y z, qw qx qy qz

struct Plan {
  Outcome outcome;
  std::vector<Row> rows;
};

Plan RunPlan(const std::string& arguments) {
  Plan plan{RunQal(arguments + " --csv -"), {}};
  std::istringstream lines(plan.outcome.out);
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line)) {
    std::istringstream fields(line);
    Row row;
    for (std::string field; std::getline(fields, field, ',');) row.push_back(std::stod(field));
    plan.rows.push_back(row);
  }
  return plan;
}

double Way(const Row& from, const Row& to) {
  return std::hypot(to[7] - from[7], to[8] - from[8], to[9] - from[9]);
}

const std::string kFrom = " --from 0 0.3 0.2 0 1 0 ";

struct LineCase {
  const char* arguments;
  size_t points;
  double first_step_m;  // of the tool, from point 0 to point 1
  double largest_step_m;
};

// 0.1001 m: fixed at speed 10, steps of 0.0004 m, 250 of them, divided by 251, the last one
// doubled; precision 1, 500 equal steps; ramp at 10, 0.0022 m of ramps, 489 steps of 0.0002
// m.
TEST(Line, HasTheStepsOfItsProfile) {
  const LineCase cases[] = {
      {"--profile fixed --speed 10", 251, 0.1001 / 251, 0.2002 / 251},
      {"--profile fixed --precision 1", 501, 0.1001 / 500, 0.1001 / 500},
      {"--speed 10", 511, 0.00002, 0.0002},
  };
  for (const LineCase& line : cases) {
    const Plan plan = RunPlan("line" + kFrom + "--by 0 .1001 0 " + line.arguments);
    EXPECT_EQ("", plan.outcome.err);
    ASSERT_EQ(line.points, plan.rows.size()) << line.arguments;
    EXPECT_NEAR(line.first_step_m, Way(plan.rows[0], plan.rows[1]), 1e-9);
    double largest_m = 0.0;
    for (size_t i = 1; i < plan.rows.size(); ++i) {
      largest_m = std::max(largest_m, Way(plan.rows[i - 1], plan.rows[i]));
      EXPECT_EQ(static_cast<double>(i) / 200.0, plan.rows[i][0]);
    }
    EXPECT_NEAR(line.largest_step_m, largest_m, 1e-9) << line.arguments;
    EXPECT_NEAR(0.1001, Way(plan.rows.front(), plan.rows.back()), 1e-12);
  }
}

TEST(Line, EndsWithTheJointsGivenOrWithTheOnesItArrivesWith) {
  const Plan by_pose = RunPlan("line" + kFrom + "--by 0 0.3 0 --speed 50");
  ASSERT_EQ(351, by_pose.rows.size());
  const Row& before = by_pose.rows[349];
  const Row& end = by_pose.rows[350];
  std::ostringstream joints;
  joints.precision(17);
  for (size_t j = 1; j <= 6; ++j) {
    EXPECT_LT(std::fabs(end[j] - before[j]), 1e-3);
    joints << ' ' << end[j];
  }
  // The same rotation as the start's, with the other sign.
  EXPECT_EQ(351, RunPlan("line" + kFrom +
                         "--to-pose 0.524128326 0.3 0.530868682 -0.035390772 0 "
                         "-0.999373555 0 --speed 50")
                     .rows.size());
  const Plan by_joints = RunPlan("line" + kFrom + "--to" + joints.str() + " --speed 50");
  EXPECT_EQ(351, by_joints.rows.size()) << by_joints.outcome.err;
  EXPECT_EQ(std::vector<double>(end.begin() + 1, end.begin() + 7),
            std::vector<double>(by_joints.rows[350].begin() + 1, by_joints.rows[350].begin() + 7));
}

// The same pose with the elbow the other way: the library would just append it.
TEST(Line, RefusesAnEndInAnotherArmConfiguration) {
  const Outcome outcome = RunQal(
      "line --from 0.218669 0.203958 0.414227 0 0.952611 0.218669 --to 0.218669 2.031822 2.911058 "
      "0 2.911102 0.218669 --profile fixed --speed 1");
  EXPECT_EQ(1, outcome.status);
  EXPECT_EQ(
      "qal line: the line arrives with other joints than the end's: joint 2 would jump "
      "1.82786 rad to the last point, at most 0.518 rad are one step\n",
      outcome.err);
}

TEST(Line, PrintsASummaryAndWritesTheSameFileWhole) {
  const std::string path = FreshPath("line.csv");
  const std::string plan = "line" + kFrom + "--by 0 0.3 0 --speed 50";
  const Outcome outcome = RunQal(plan + " --mm --csv " + path);
  EXPECT_EQ(1, outcome.status);  // 0.3 mm are too short, and leave no file
  EXPECT_EQ("(none)", FileContent(path));
  const Outcome whole = RunQal(plan + " --csv " + path);
  EXPECT_EQ(0, whole.status);
  EXPECT_EQ(RunQal(plan + " --csv -").out, FileContent(path));
  for (const char* row :
       {"points                                   351\n",
        "duration [s]                             1.750\n",
        "way of the tool [m]                      0.300000000\n", ", joint 6, to point 50\n"}) {
    EXPECT_NE(std::string::npos, whole.out.find(row)) << whole.out;
  }
}

// Jerk 10, 0.01 m: a phase of 79 ms, cut to 75 ms, 15 points, 0.0703125 of the line.
TEST(Line, SaysWhereTheSCurveEnds) {
  const std::string limits = " --profile s-curve --acc 1 --jerk 10 --motor-rpm 3000";
  const Plan phase = RunPlan("line" + kFrom + "--by 0.01 0 0" + limits);
  EXPECT_EQ(15, phase.rows.size());
  EXPECT_EQ(
      "note: the S-curve plan ends after its first phase, as it is made to: 15 points, "
      "0.000703125 of 0.01 m (7.03 %) along the line",
      LastLine(phase.outcome.err));
  const Plan ends = RunPlan("line" + kFrom + "--by 0.0001 0 0" + limits);
  EXPECT_EQ(2, ends.rows.size());
  EXPECT_EQ("note: the line is too short for an S-curve: the plan is its two ends",
            LastLine(ends.outcome.err));
}

// Fixed: 0.5 rad in steps of speed 10, 0.001745329 rad. Ramp: 5 units of 0.01 degree at the top,
// 0.5 rad in 2 * 5 + 566 + 1. Trapezoid at 50 % and 10000 rpm/s, joint 1 by 1 rad: 492 cycles.
TEST(Joint, HasThePointsOfItsProfile) {
  const std::pair<const char*, size_t> cases[] = {
      {"--to 0.5 0 0 0 0 0 --profile fixed --speed 10", 287},
      {"--to 0.5 0 0 0 0 0 --profile ramp --speed 10", 577},
      {"--to 1 0.5 0 0 0 -0.3 --speed 50 --acc 10000", 492}};
  for (const auto& [arguments, points] : cases) {
    EXPECT_EQ(points, RunPlan(std::string("joint --from 0 0 0 0 0 0 ") + arguments).rows.size())
        << arguments;
  }
  EXPECT_EQ("the joint num is492\n",
            RunQal(std::string("joint --from 0 0 0 0 0 0 ") + cases[2].first).err);
}

struct FailedMove {
  const char* arguments;
  const char* line;
};

// The last line of standard error. The arm reaches 0.2786 m out along x from the start.
TEST(Move, ThatFailsSaysWhereAndWhyAndLeavesNoFile) {
  constexpr FailedMove kCases[] = {
      {"line --by 0.5 0 0 --speed 20",
       "qal line: no solution at point 706, 0.2786 m (55.7 %) along the line, at 0.802728 0 "
       "0.530869 m (orientation 0.0353908 0 0.999374 0): out of reach, the solver finds no joints "
       "for it"},
      {"line --by 0.5 0 0 --speed 50 --profile fixed",
       "qal line: no solution at point 139, 0.279116 m (55.8 %) along the line, at"},
      {"line --by 0.2784 0 0 --speed 50 --profile fixed",
       "qal line: no solution at point 139, 0.2784 m (100 %) along the line, at 0.802528 0"},
      {"line --by 0.5 0 0 --precision 10 --profile fixed",
       "qal line: no solution at point 137, 0.2751 m (55 %) along the line, at 0.799229 0 0.530869 "
       "m (orientation 0.0353908 0 0.999374 0): none of the 4 solutions is admissible; the "
       "nearest: joint 3 moves 0.0486821 rad, 0.00504886 rad over the step bound of 0.0436332 rad"},
      {"line --by 0 0.002 0 --speed 10",
       "qal line: the line is too short for its ramps at --speed 10: 0.002 m, and the shortest "
       "that works is 0.0022 m"},
      {"line --to 0 0.3 0.2 0 1.1 0 --speed 5", "qal line: the tool would have to turn: "},
      {"line --to-pose 0.5 0 2 --speed 5", "qal line: the end is 1.46913 m away on an axis"},
      {"line --by 0.01 0 0 --profile s-curve --acc 0.1 --jerk 10 --motor-rpm 3000",
       "qal line: --acc 0.1 is built up within 20 ms at --jerk 10; it has to be above 0.02 s * "
       "--jerk, 0.2"},
      {"line --by 0.01 0 0 --profile s-curve --acc 1 --jerk 10 --motor-rpm 3",
       "qal line: joint 3 would need its motor at 282 rpm at point 14, 0.000703125 m (7.03 %) "
       "along "
       "the line, at"},
      {"joint --to 2.9 0 0 0 0 0 --speed 1 --acc 1",
       "qal joint: the move takes 73017 cycles at --speed 1 --acc 1, at most 46340 are planned"},
      {"joint --to-pose 2 0 0 --speed 1 --acc 1", "qal joint: no solution at the end, 2 0 0 m"},
  };
  const std::string path = FreshPath("failed.csv");
  for (const FailedMove& move : kCases) {
    const Outcome outcome = RunQal(move.arguments + kFrom + "--csv " + path);
    EXPECT_EQ(1, outcome.status) << move.arguments;
    EXPECT_EQ("", outcome.out);
    EXPECT_EQ(0, LastLine(outcome.err).find(move.line)) << outcome.err;
    EXPECT_EQ("(none)", FileContent(path));
  }
}

}  // namespace
