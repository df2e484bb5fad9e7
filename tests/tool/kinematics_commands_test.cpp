#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "qal_run.h"

namespace {

using Fk = InOwnFolder;
using Ik = InOwnFolder;
using Jog = InOwnFolder;

void ExpectNear(const std::vector<double>& expected, const Json& given, double tolerance) {
  ASSERT_EQ(expected.size(), given.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(expected[i], given[i].get<double>(), tolerance) << i << " of " << given;
  }
}

// The flange lies 0.05 + 0.38 + 0.08 m out, at 45 degrees, and 0.38 + 0.4 + 0.035 m up.
TEST_F(Fk, GivesTheReferenceArmsPose) {
  const std::string expected =
      "arm                      reference arm (built in), spherical wrist, hash "
      "qal-reference-arm-1\n"
      "joints 1 to 6 [deg]        45.000000     0.000000     0.000000     0.000000     0.000000    "
      "-0.500000\n"
      "position x y z [mm]        360.62446    360.62446    815.00000\n";
  EXPECT_EQ(expected, Qal("fk --mm --deg --joints 45 -0 0 0 0 -.5").out.substr(0, expected.size()));
}

TEST_F(Fk, WritesAFileThatHoldsRadiansAndMetres) {
  std::ofstream("fk.csv") << "what was there";
  std::filesystem::create_symlink("fk.csv", "link.csv");
  EXPECT_EQ(0, Qal("fk --deg --mm --joints 0 0 0 0 0 0 --csv link.csv").status);
  EXPECT_TRUE(std::filesystem::is_symlink("link.csv"));
  const std::string csv = FileContent("fk.csv");
  EXPECT_EQ(0, csv.find("time_s,q1_rad,q2_rad,q3_rad,q4_rad,q5_rad,q6_rad,x_m,y_m,z_m,qw,qx,qy,qz\n"
                        "0,0,0,0,0,0,0,0.51,0,0.815"))
      << csv;
}

// The same pose in each way to write it; the quaternions are twice one, and its opposite.
TEST_F(Ik, FindsTheJointsNearestAReference) {
  for (const std::string pose :
       {"--pose 0.45 0.1 0.5 --rpy 0 3.141592653589793 0", "--pose 0.45,0.1,0.5 0 0 2 0",
        "--pose 0.45 0.1 0.5 0 0 -1 0", "--mm --deg --pose 450 100 500 --rpy 180 0 180"}) {
    const bool degrees = pose.find("--deg") != std::string::npos;
    const std::string near = degrees ? "0 17.19 11.46 0 57.3 0" : "0 0.3 0.2 0 1 0";
    const Json solved = QalJson("ik " + pose + " --near " + near);
    ExpectNear({0.2186689, 0.2039578, 0.4142271, 0.0, 0.9526113, 0.2186689}, solved["joints_rad"],
               1e-6);
    EXPECT_NEAR(0.794996, solved["distance_rad"].get<double>(), degrees ? 1e-3 : 1e-5);
  }
  EXPECT_EQ("note: --pose: the quaternion has the length 2 and is normalised\n",
            Qal("ik --pose 0.45 0.1 0.5 0 0 2 0 --near 0 0.3 0.2 0 1 0").err);
}

// 8 solutions: joint 3 beyond 170 degrees at the last two, joint 4 half a turn off at three others.
// A bound of 0.2 rad is 0.0186689 less than what joint 1 has to move.
TEST_F(Ik, ListsEverySolutionWithItsVerdict) {
  const std::string ask = "ik --all --pose 0.45 0.1 0.5 0 0 1 0 --near 0 0.3 0.2 0 1 0";
  const Json all = QalJson(ask)["solutions"];
  EXPECT_EQ(8, all.size());
  const auto chosen = [](const Json& solutions) {
    return std::count_if(solutions.begin(), solutions.end(),
                         [](const Json& solution) { return solution["chosen"].get<bool>(); });
  };
  EXPECT_EQ(1, chosen(all));
  std::set<std::string> branches;
  for (const Json& solution : all) branches.insert(solution["branch"]);
  EXPECT_EQ(8, branches.size());
  const std::string table = Qal(ask).out;
  EXPECT_NE(std::string::npos, table.find("refused: joint 3 at -3.06458 rad, 0.097517 rad outside "
                                          "its limit of -2.96706 rad\n"))
      << table;
  const ToolRun bounded = Qal(ask + " --step-bound 0.2");
  EXPECT_EQ(1, bounded.status);
  EXPECT_NE(std::string::npos, bounded.out.find("refused: joint 1 moves 0.218669 rad, 0.0186689 "
                                                "rad over the step bound of 0.2 rad\n"));
  EXPECT_EQ("qal ik: none of the 8 solutions is admissible\n", bounded.err);
  // Axes 4 and 6 in line: the solver gives the same joints more than once.
  const Json twice = QalJson("ik --all --pose 0.51 0 0.815 0.70710678 0 0.70710678 0")["solutions"];
  EXPECT_EQ(1, chosen(twice)) << twice;
}

// Rows near the solution before, from a file and from standard input, whatever else it holds; the
// rows come back as they went in.
TEST_F(Ik, SolvesAWholeFile) {
  std::ofstream("poses.csv") << "note,time_s,x_m,y_m,z_m,qw,qx,qy,qz\n"
                                "a,0,0.45,0.1,0.5,0,0,1,0\nb,1,2,0,0,0,0,1,0\n"
                                "c,2,0.45,0.12,0.5,0,0,1,0\n";
  const ToolRun run = Qal("ik --file poses.csv --near 0 0.3 0.2 0 1 0 --csv -");
  EXPECT_EQ(1, run.status);
  EXPECT_EQ("qal ik: poses.csv: 1 of 3 rows without a solution\n", run.err);
  EXPECT_NE(std::string::npos,
            run.out.find("\n1,,,,,,,,,,,,,,out of reach; the solver finds no joints for it\n"));

  const ToolRun piped = Shell("grep -v b poses.csv | " QAL_BINARY
                              " ik --file - --near 0 0.3 0.2 0 1 0 --csv solved.csv "
                              "--json");
  EXPECT_EQ(0, piped.status) << piped.err;
  const Json rows = Json::parse(piped.out)["rows"];
  ASSERT_EQ(2u, rows.size());
  EXPECT_NEAR(0.9526113, rows[0]["joints_rad"][4].get<double>(), 1e-6);
  const Json back = QalJson("fk --file solved.csv")["rows"];
  EXPECT_EQ(2.0, back[1]["time_s"]);
  ExpectNear({0.45, 0.12, 0.5}, back[1]["position_m"], 1e-12);
}

// One step of 2 mm back along the tool's axis, which points along x at zero joints but for 0.5 rad.
TEST_F(Jog, StepsAlongAToolAxis) {
  const std::string joints = "--joints 0 0.3 -0.2 0 0.5 0";
  const std::vector<double> from = QalJson("fk " + joints)["position_m"];
  const double pitch = 0.3 - 0.2 + 0.5;
  const Json jogged = QalJson("jog --frame tool --axis z --mm --step -2 " + joints);
  ExpectNear({from[0] - 0.002 * std::cos(pitch), 0.0, from[2] + 0.002 * std::sin(pitch)},
             jogged["position_m"], 1e-9);
}

// Each way to name an arm, in heading and JSON; a file that isn't there is never another arm.
TEST_F(Fk, SaysWhichArmItIsOf) {
  const std::string arm = QAL_ARMS_DIR "/bench_parallel.urdf";
  const std::string zero = "fk --joints 0 0 0 0 0 0 ";
  const Json json = QalJson(zero + "--arm " + arm);
  EXPECT_EQ(arm, json["arm"]["file"]);
  EXPECT_EQ("three parallel axes", json["arm"]["family"]);
  EXPECT_EQ(json, QalJson("--arm " + arm + " " + zero));
  EXPECT_EQ(json, Json::parse(Shell("QAL_ARM=" + arm + " " QAL_BINARY " " + zero + "--json").out));
  EXPECT_NE(json["position_m"], QalJson(zero)["position_m"]);
}

}  // namespace
