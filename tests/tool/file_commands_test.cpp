#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "run_qal.h"

namespace {

// One second apart: joint 4 makes 0.2 rad in the last one.
const std::string kFourRows =
    "time_s,q1_rad,q2_rad,q3_rad,q4_rad,q5_rad,q6_rad\n"
    "0,0,0.3,-0.2,0,0.5,0\n"
    "1,0.1,0.3,-0.2,0,0.5,0\n"
    "2,0.15,0.3,-0.2,0,0.5,0\n"
    "3,0.15,0.3,-0.2,-0.2,0.5,0\n";

// The path of a file with the text.
std::string FileWith(const std::string& text, const std::string& name = "in.csv") {
  const std::string path = FreshPath(name);
  std::ofstream(path) << text;
  return path;
}

TEST(Convert, GoesThroughEachFormatToTheSameFile) {
  const std::string in = FileWith(kFourRows);
  const std::string json = FreshPath("a.json");
  const std::string yaml = FreshPath("a.yaml");
  const std::string out = FreshPath("out.csv");
  ASSERT_EQ(0, RunQal("convert " + in + " " + json).status);
  ASSERT_EQ(0, RunQal("convert --joint-names a,b,c,d,e,f " + json + " " + yaml).status);
  ASSERT_EQ(0, RunQal("convert " + yaml + " " + out + " --joint-names a,b,c,d,e,f").status);
  EXPECT_EQ(kFourRows, FileContent(out));
  EXPECT_EQ(kFourRows, RunQal("convert " + json + " - --to csv").out);
  const std::string full = RunQal("convert " + in + " - --to csv --fk --full").out;
  EXPECT_NE(std::string::npos, full.find(",q6_rad,x_m,y_m,z_m,qw,qx,qy,qz,qd1_rad_s,")) << full;
}

TEST(Convert, RefusesInOneLineAndLeavesTheFileAlone) {
  const std::string good = FileWith(kFourRows);
  const std::string repeated = FileWith(kFourRows + "3,0,0,0,0,0,0\n", "repeated.csv");
  const std::string out = FileWith("kept", "out.csv");
  const std::pair<std::string, std::string> cases[] = {
      {repeated + " " + out,
       repeated + ": sample 4 (line 6): the time 3 s is not after the one before, 3 s"},
      {good + " " + out + ".txt", out + ".txt: the name tells no format; .csv, .json, .yaml or "
                                        ".yml, or --to csv, json or ros was expected"},
      {good + " --to json --full " + out, "--full: only a CSV file has these columns"},
      {good + " --joint-names a,a,c,d,e,f " + out, "--joint-names: a name stands twice"},
      {good + " --from json " + out, good + ": line 1, column 2: no valid JSON from here"},
  };
  for (const auto& [arguments, message] : cases) {
    const Outcome outcome = RunQal("convert " + arguments);
    EXPECT_EQ(2, outcome.status) << arguments;
    EXPECT_EQ("qal convert: " + message + "\n", outcome.err);
    EXPECT_EQ("kept", FileContent(out));
  }
}

TEST(Verify, ListsTheViolationsWithSampleAndLine) {
  const std::string file = FileWith(kFourRows);
  const Outcome good = RunQal("verify --max-joint-speed 0.2 --max-motor-rpm 700 " + file);
  EXPECT_EQ(0, good.status) << good.out;
  EXPECT_EQ("", good.err);
  EXPECT_EQ("no violation", LastLine(good.out));

  const std::string limits = " --max-joint-speed 1,1,1,0.15,1,1 --max-position-error 0.001 ";
  const Outcome bad = RunQal("verify" + limits + file);
  EXPECT_EQ(1, bad.status);
  EXPECT_EQ("qal verify: " + file + ": 2 violations\n", bad.err);
  EXPECT_NE(
      std::string::npos,
      bad.out.find("\nviolations:\n"
                   "  joint speed, joint 4: 0.2 rad/s at sample 3 (line 5), 3 s; limit 0.15 rad/s\n"
                   "  position error: nothing to measure; limit 0.001 m\n"))
      << bad.out;

  const auto json = nlohmann::json::parse(RunQal("verify" + limits + file + " --json").out);
  ASSERT_EQ(2u, json["violations"].size());
  const auto& violation = json["violations"][0];
  EXPECT_EQ("joint_speed_rad_s", violation["what"]);
  EXPECT_EQ(4, violation["joint"]);
  EXPECT_EQ(3, violation["measured"]["sample"]);
  EXPECT_EQ(5, violation["measured"]["line"]);
  EXPECT_EQ(json["joint_speed_rad_s"][3], violation["measured"]);
  EXPECT_EQ(1, RunQal("verify " + FileWith(kFourRows + "3,0,0,0,0,0,0\n")).status);
}

TEST(Verify, RefusesALimitThatIsNone) {
  const std::string file = FileWith(kFourRows);
  for (const char* limit : {"--max-joint-acc 1,2", "--max-deviation 1,1", "--max-tool-speed -1",
                            "--max-joint-jerk x", "--max-motor-rpm nan"}) {
    const Outcome outcome = RunQal("verify " + file + " " + limit);
    EXPECT_EQ(2, outcome.status) << limit;
    EXPECT_EQ("", outcome.out);
  }
}

TEST(Verify, PrintsNoNanHoweverFewTheSamples) {
  std::istringstream lines(kFourRows);
  std::string rows;
  for (int line = 1; line <= 3; ++line) {
    std::string row;
    std::getline(lines, row);
    rows += row + "\n";
    if (line == 1) continue;
    for (const char* format : {"", "--json "}) {
      const Outcome outcome = RunQal("verify " + std::string(format) + FileWith(rows));
      EXPECT_EQ(0, outcome.status) << outcome.err;
      for (const char* word : {"nan", "inf"}) {
        EXPECT_EQ(std::string::npos, outcome.out.find(word)) << outcome.out;
      }
    }
  }
}

}  // namespace
