#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "run_qal.h"

namespace {

using Json = nlohmann::json;

Json RunJson(const std::string& arguments) {
  const Outcome outcome = RunQal(arguments + " --json");
  EXPECT_EQ(0, outcome.status) << outcome.err;
  return Json::parse(outcome.out);
}

void ExpectNear(const std::vector<double>& expected, const Json& given, double tolerance) {
  ASSERT_EQ(expected.size(), given.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(expected[i], given[i].get<double>(), tolerance) << i << " of " << given;
  }
}

// With all joints at zero the flange lies 0.05 + 0.38 + 0.08 m out and 0.38 + 0.4 + 0.035 m up, and
// the tool's z axis points along x: a quarter turn about y.
TEST(Fk, GivesTheReferenceArmsPose) {
  const Json zero = RunJson("fk --joints 0 0 0 0 0 0");
  ExpectNear({0.51, 0.0, 0.815}, zero["position_m"], 1e-12);
  ExpectNear({0.70710678, 0.0, 0.70710678, 0.0}, zero["orientation_wxyz"], 1e-7);
  const Outcome table = RunQal("fk --mm --deg --joints 90 -0 0 0 0 -.5");
  EXPECT_EQ(0,
            table.out.find("joints 1 to 6 [deg]        90.0000000     0.0000000     0.0000000   "
                           "  0.0000000     0.0000000    -0.5000000\n"
                           "position x y z [mm]          0.000000    510.000000    815.000000\n"))
      << table.out;
}

TEST(Fk, WritesAFileThatHoldsRadiansAndMetres) {
  const std::string path = FreshPath("fk.csv");
  const std::string link = FreshPath("link.csv");
  std::ofstream(path) << "what was there";
  std::filesystem::create_symlink(path, link);
  EXPECT_EQ(0, RunQal("fk --deg --mm --joints 0 0 0 0 0 0 --csv " + link).status);
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  const std::string csv = FileContent(path);
  EXPECT_EQ(0, csv.find("time_s,q1_rad,")) << csv;
  EXPECT_NE(std::string::npos, csv.find("\n0,0,0,0,0,0,0,0.51,0,0.815")) << csv;
}

// The same pose in each way to write it; the quaternions are twice one, and its opposite.
TEST(Ik, FindsTheJointsNearestAReference) {
  for (const std::string pose :
       {"--pose 0.45 0.1 0.5 --rpy 0 3.141592653589793 0", "--pose 0.45,0.1,0.5 0 0 2 0",
        "--pose 0.45 0.1 0.5 0 0 -1 0", "--mm --deg --pose 450 100 500 --rpy 180 0 180"}) {
    const bool degrees = pose.find("--deg") != std::string::npos;
    const std::string near = degrees ? "0 17.19 11.46 0 57.3 0" : "0 0.3 0.2 0 1 0";
    const Json solved = RunJson("ik " + pose + " --near " + near);
    ExpectNear({0.2186689, 0.2039578, 0.4142271, 0.0, 0.9526113, 0.2186689}, solved["joints_rad"],
               1e-6);
    EXPECT_NEAR(0.794996, solved["distance_rad"].get<double>(), degrees ? 1e-3 : 1e-5);
  }
  EXPECT_EQ("note: --pose: the quaternion has the length 2 and is normalised\n",
            RunQal("ik --pose 0.45 0.1 0.5 0 0 2 0 --near 0 0.3 0.2 0 1 0").err);
}

// At the pose of the reference joints the library writes no joints: they are the answer.
TEST(Ik, AnswersThePoseOfTheReferenceWithTheReference) {
  const Json solved = RunJson("ik --pose 0.51 0 0.815 0.70710678 0 0.70710678 0");
  ExpectNear({0, 0, 0, 0, 0, 0}, solved["joints_rad"], 0.0);
}

// 8 solutions: joint 3 beyond 170 degrees at the last two, joint 4 half a turn off at three others.
// A bound of 0.2 rad is 0.0186689 less than what joint 1 has to move.
TEST(Ik, ListsEverySolutionWithItsVerdict) {
  const std::string ask = "ik --all --pose 0.45 0.1 0.5 0 0 1 0 --near 0 0.3 0.2 0 1 0";
  const Json all = RunJson(ask)["solutions"];
  ASSERT_EQ(8, all.size());
  size_t chosen = 0;
  for (const Json& solution : all) {
    if (!solution["chosen"]) continue;
    ++chosen;
    EXPECT_TRUE(solution["admissible"]);
    EXPECT_NEAR(0.794996, solution["distance_rad"].get<double>(), 1e-6);
  }
  EXPECT_EQ(1, chosen);
  EXPECT_NE(std::string::npos, RunQal(ask).out.find("refused: joint 3 at -3.06458 rad, 0.097517 "
                                                    "rad outside its range of +-2.96706 rad\n"));
  const Outcome bounded = RunQal(ask + " --step-bound 0.2");
  EXPECT_EQ(1, bounded.status);
  EXPECT_NE(std::string::npos, bounded.out.find("refused: joint 1 moves 0.218669 rad, 0.0186689 "
                                                "rad over the step bound of 0.2 rad\n"));
  EXPECT_EQ("qal ik: none of the 8 solutions is admissible\n", bounded.err);
}

// One step of 2 mm back along the tool's axis, which points along x at zero joints but for 0.5 rad.
TEST(Jog, StepsAlongAToolAxis) {
  const std::string joints = "--joints 0 0.3 -0.2 0 0.5 0";
  const std::vector<double> from = RunJson("fk " + joints)["position_m"];
  const double pitch = 0.3 - 0.2 + 0.5;
  const Json jogged = RunJson("jog --frame tool --axis z --mm --step -2 " + joints);
  ExpectNear({from[0] - 0.002 * std::cos(pitch), 0.0, from[2] + 0.002 * std::sin(pitch)},
             jogged["position_m"], 1e-9);
  ExpectNear(jogged["position_m"],
             RunJson("fk --joints " +
                     [&jogged] {
                       std::string text;
                       for (const Json& joint : jogged["joints_rad"]) text += joint.dump() + " ";
                       return text;
                     }())["position_m"],
             1e-9);
}

struct NoSolution {
  const char* arguments;
  const char* line;
};

TEST(NoSolution, IsStatusOneAndSaysWhy) {
  constexpr NoSolution kCases[] = {
      {"ik --pose 2 0 0.5 1 0 0 0",
       "qal ik: no solution at 2 0 0.5 m (orientation 1 0 0 0): out of reach, the solver finds no "
       "joints for it"},
      // The bounded form answers it with the reference joints; that is no solution either.
      {"ik --pose 2 0 0.5 1 0 0 0 --step-bound 0.1 --near 0 0.3 0.2 0 1 0",
       "qal ik: no solution at 2 0 0.5 m (orientation 1 0 0 0): out of reach; the library falls "
       "back to joints that are 1.48 m and 3.07 rad off"},
      {"ik --pose 0.45 0.1 0.5 0 0 1 0 --near 0 0.3 0.2 0 1 0 --step-bound 0.2",
       "qal ik: no solution at 0.45 0.1 0.5 m (orientation 0 0 1 0): none of the 8 solutions is "
       "admissible; the nearest: joint 1 moves 0.218669 rad, 0.0186689 rad over the step bound of "
       "0.2 rad"},
      {"jog --joints 0 0 0 0 1 0 --axis x --step 1",
       "qal jog: no solution for 1 m along x of the base frame from"},
  };
  for (const NoSolution& none : kCases) {
    const Outcome outcome = RunQal(none.arguments);
    EXPECT_EQ(1, outcome.status) << none.arguments;
    EXPECT_EQ("", outcome.out);
    EXPECT_EQ(0, LastLine(outcome.err).find(none.line)) << outcome.err;
  }
}

}  // namespace
