#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "qal_run.h"

namespace {

using Line = InOwnFolder;
using Joint = InOwnFolder;

const std::string kFrom = " --from 0 0.3 0.2 0 1 0 ";

TEST_F(Line, EndsWithTheJointsGivenOrWithTheOnesItArrivesWith) {
  const Json by_pose =
      QalJson("line" + kFrom + "--by 0 0.3 0 --profile ramp --speed 50")["joints_rad"];
  ASSERT_EQ(351, by_pose.size());
  const Json& end = by_pose[350];
  // The same rotation as the start's, with the other sign.
  const Json turned = QalJson("line" + kFrom +
                              "--to-pose 0.524128326 0.3 0.530868682 -0.035390772 0 -0.999373555 0 "
                              "--profile ramp --speed 50");
  EXPECT_EQ(351, turned["time_s"].size());
  const std::string joints = end.dump().substr(1, end.dump().size() - 2);
  const Json by_joints =
      QalJson("line" + kFrom + "--to " + joints + " --profile ramp --speed 50")["joints_rad"];
  EXPECT_EQ(end, by_joints.back());
}

TEST_F(Line, PrintsASummaryAndWritesTheSameFileWhole) {
  const std::string plan = "line" + kFrom + "--by 0 0.3 0 --profile ramp --speed 50";
  EXPECT_EQ(1, Qal(plan + " --mm --csv line.csv").status);  // 0.3 mm are too short, and ...
  EXPECT_EQ("", Files());                                   // ... leave no file
  const ToolRun whole = Qal(plan + " --csv line.csv");
  EXPECT_EQ(0, whole.status);
  EXPECT_EQ("", whole.err);
  EXPECT_EQ(Qal(plan + " --csv -").out, FileContent("line.csv"));
  for (const char* row :
       {"points                                    351\n",
        "duration [s]                            1.750\n",
        "TCP path length [m]                0.30000000\n", "\njoint speed [rad/s]  "}) {
    EXPECT_NE(std::string::npos, whole.out.find(row)) << whole.out;
  }
}

// The arm's velocity limits are 3000 rpm: joint 1 turns 363 times slower. At 100 % the trapezoid
// goes above that; 5 cm beside axis 1 a line does by far; a jog of 0.1 rad at the wrist's
// singularity turns joint 4 by half a turn. What a file says goes before what is assumed.
TEST_F(Line, IsJudgedByTheArm) {
  std::ofstream("slow.toml") << "description = '" QAL_ARMS_DIR
                                "/reference.urdf'\n"
                                "[limits]\nvelocity_rad_s = 0.1\nacceleration_rad_s2 = 4\n"
                                "upper_rad = 1.1\n";
  const struct {
    std::string arguments;
    std::vector<const char*> exceeded;
  } cases[] = {
      {"line" + kFrom + "--by 0 0.3 0 --profile ramp --speed 50", {}},
      {"line" + kFrom + "--by 0 0.3 0 --profile ramp --speed 50 --arm slow.toml",
       {"joint_speed_rad_s", "motor_speed_rpm"}},
      {"line" + kFrom + "--by 0.1 0 0 --profile ramp --speed 1 --arm slow.toml",
       {"joint_position_rad"}},
      {"joint --profile trapezoid --from 0 0 0 0 1 0 --to 1 0 0 0 1 0 --speed 100 --acc 5000",
       {"joint_speed_rad_s", "motor_speed_rpm"}},
      {"jog --joints 0 0.3 -0.2 0 0.001 0 --frame tool --axis rx --step 0.1",
       {"joint_speed_rad_s", "joint_acceleration_rad_s2", "motor_speed_rpm"}},
  };
  for (const auto& [arguments, exceeded] : cases) {
    SCOPED_TRACE(arguments);
    const ToolRun run = Qal(arguments + " --json");
    EXPECT_EQ(0, run.status);
    const Json verdict = Json::parse(run.out)["verdict"];
    EXPECT_EQ(exceeded.size(), verdict["exceeded"]) << verdict;
    for (const char* key : exceeded) EXPECT_TRUE(verdict[key]["exceeded"]) << key << verdict;
    EXPECT_EQ(exceeded.size(), std::count(run.err.begin(), run.err.end(), '\n')) << run.err;
    const ToolRun strict = Qal(arguments + " --strict");
    EXPECT_EQ(exceeded.empty() ? 0 : 1, strict.status);
    EXPECT_EQ(exceeded.empty(), strict.out.find(": exceeded\n") == std::string::npos);
  }
  const Json described =
      QalJson("line" + kFrom + "--by 0 0.3 0 --profile ramp --speed 50")["verdict"];
  EXPECT_FALSE(described["motor_speed_rpm"]["assumed"]);
  EXPECT_TRUE(described["joint_acceleration_rad_s2"]["assumed"]);
}

// 0.3 m at 0.2 m/s, reached in 0.2 s + 0.1 s with 1 m/s^2 and 10 m/s^3: 1.5 s + 0.3 s, the middle
// at 0.2 m/s. The quarter turn about the tool's axis takes longer: 1 rad/s, in 0.35 s.
TEST_F(Line, KeepsEveryLimitWhateverItsEnds) {
  const std::string line = "line" + kFrom + "--strict --speed 0.2 ";
  const Json straight = QalJson(line + "--by 0 0.3 0 --csv a.csv");
  EXPECT_NEAR(1.8, straight["duration_s"], 0.005 + 1e-9);
  EXPECT_NEAR(0.3, straight["length_m"], 1e-12);
  EXPECT_EQ("tool_speed", straight["limited_by"].at(0).at("limit"));
  const Json turned = QalJson(line + "--to-pose 0.5 0.1 0.5 --rpy 180 0 90 --deg --csv b.csv");
  EXPECT_EQ("turn_speed", turned["limited_by"].at(0).at("limit"));
  EXPECT_EQ(0, QalJson(line + "--by 0 0 0")["duration_s"]);
  for (const char* file : {"a.csv", "b.csv"}) {
    const ToolRun verified = Qal("verify --strict --max-tool-speed 0.2 " + std::string(file));
    EXPECT_EQ(0, verified.status) << verified.out;
  }
}

// Jerk 10, 0.01 m: a phase of 79 ms, cut to 75 ms, 15 points, 0.0703125 of the line.
TEST_F(Line, SaysWhereTheSCurveEnds) {
  const std::tuple<std::string, size_t, const char*> cases[] = {
      {"--mm --by 10 0 0 --acc 1000 --jerk 10000", 16,
       "note: the S-curve plan ends after its first phase, as it is made to: 16 points, "
       "0.703125 of 10 mm (7.03 %) along the line"},
      {"--by 0.0001 0 0 --acc 1 --jerk 10", 2,
       "note: the line is too short for an S-curve: the plan is its two ends"}};
  for (const auto& [arguments, points, note] : cases) {
    const ToolRun plan = Qal("line --json --profile s-curve --motor-rpm 3000" + kFrom + arguments);
    EXPECT_EQ(0, plan.err.find(note + std::string("\n"))) << plan.err;
    EXPECT_EQ(points, Json::parse(plan.out)["time_s"].size());
  }
}

// Each profile has its operation's points, and the operation's own lines come with --verbose alone.
TEST_F(Joint, HasThePointsOfItsProfileAndItsOwnLinesWithVerboseAlone) {
  const std::string joint = "joint --json --from 0 0 0 0 0 0 --to 1 0.5 0 0 0 -0.3 --speed 50 ";
  std::set<size_t> points;
  for (const char* profile :
       {"--profile fixed", "--profile ramp", "--profile trapezoid --acc 10000"}) {
    points.insert(QalJson(joint + profile)["time_s"].size());
  }
  EXPECT_EQ(3u, points.size());
  EXPECT_EQ(1u, points.count(493));
  const std::string trapezoid = joint + "--profile trapezoid --acc 10000";
  const std::string quiet = Qal(trapezoid).err;
  EXPECT_EQ("the joint num is492\n" + quiet, Qal(trapezoid + " --verbose").err);
}

// Joint 1 has the longest way. Its rates are in every file as planned, so that each is judged by
// them and kept; at half of the limits by a factor of 2.
TEST_F(Joint, KeepsTheLimitsOfTheArmUnlessToldOtherwise) {
  const std::string joint = "joint --from 0 0 0 0 1.2 0 --to 0.9 0.3 0.2 0 1 0";
  const Json plan = QalJson(joint + " --strict --csv a.csv");
  EXPECT_EQ("joint_velocity", plan["limited_by"].at(0).at("limit"));
  EXPECT_EQ(1, plan["limited_by"].at(0).at("joint"));
  EXPECT_EQ(0, Qal("convert a.csv a.json").status + Qal("convert a.json a.yaml").status);
  for (const char* file : {"a.csv", "a.json", "a.yaml"}) {
    EXPECT_EQ(0, Qal("verify --strict " + std::string(file)).status) << file;
    const Json by_file = QalJson("verify " + std::string(file));
    EXPECT_EQ("file", by_file["rates_by"]) << file;
    EXPECT_NEAR(plan["verdict"]["joint_jerk_rad_s3"]["value"],
                by_file["joint_jerk_rad_s3"][0]["value"], 1e-9);
  }
  const Json half = QalJson(joint + " --scale 50")["verdict"];
  for (const char* rate : {"joint_speed_rad_s", "joint_acceleration_rad_s2", "joint_jerk_rad_s3"}) {
    EXPECT_NEAR(0.5, double(half[rate]["value"]) / double(half[rate]["limit"]), 0.01) << rate;
  }
}

}  // namespace
