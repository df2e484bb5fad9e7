#include <gtest/gtest.h>

#include "qal_run.h"

namespace {

class Convert : public InOwnFolder {
 protected:
  Convert() { std::ofstream("in.csv") << kFourRows; }
};
using Verify = Convert;

TEST_F(Convert, GoesThroughEachFormatToTheSameFile) {
  EXPECT_EQ(0, Qal("convert in.csv a.json").status);
  EXPECT_EQ(0, Qal("convert --joint-names a,b,c,d,e,f a.json a.yaml").status);
  // Another's names are taken in their order, with a note.
  const ToolRun other = Qal("convert a.yaml - --to csv");
  EXPECT_EQ(kFourRows, other.out);
  EXPECT_EQ("note: a.yaml: joints 1 to 6 in the order of the file: a, b, c, d, e, f\n", other.err);
  const std::string full = Qal("convert in.csv - --to csv --fk --full").out;
  EXPECT_NE(std::string::npos, full.find(",q6_rad,x_m,y_m,z_m,qw,qx,qy,qz,qd1_rad_s,")) << full;
}

TEST_F(Verify, ListsTheViolationsWithSampleAndLine) {
  const ToolRun good = Qal("verify --max-joint-speed 1 1 1,0.2 1 1 --max-motor-rpm 700 in.csv");
  EXPECT_EQ(0, good.status) << good.out;
  EXPECT_EQ("", good.err);
  EXPECT_EQ(
      0,
      good.out.find(
          "in.csv: 4 samples, 0 s to 3 s, 1 s apart; rates by differences, tool by the joints\n"));
  EXPECT_NE(std::string::npos, good.out.find("\nno violation\n")) << good.out;

  const std::string check = "verify --max-joint-speed 0.15 --max-position-error 0.001 in.csv";
  const ToolRun bad = Qal(check);
  EXPECT_EQ(1, bad.status);
  EXPECT_EQ("qal verify: in.csv: 2 violations\n", bad.err);
  EXPECT_NE(
      std::string::npos,
      bad.out.find(
          "\nviolations:\n"
          "  joint speed, joint 4: 0.2 rad/s at sample 3 (line 5), 3 s; limit 0.15 rad/s (option)\n"
          "  position error: nothing to measure; limit 0.001 m (option)\n"))
      << bad.out;

  const Json json = Json::parse(Qal(check + " --json").out);
  const Json measured = {{"value", 0.2}, {"sample", 3}, {"time_s", 3.0}, {"line", 5}};
  EXPECT_EQ(2u, json["violations"].size());
  EXPECT_EQ(measured, json["violations"][0]["measured"]);
  std::ofstream("in.csv", std::ios::app) << "3,0,0,0,0,0,0\n";
  EXPECT_EQ("qal verify: in.csv: 1 violation\n", Qal("verify in.csv").err);
}

// What the arm file says makes an acceleration of 0.16 rad/s^2 be assumed: joint 4 has 0.2.
TEST_F(Verify, JudgesByTheArmAndTakesWhatIsAssumedForANote) {
  std::ofstream("slow.toml") << "description = '" QAL_ARMS_DIR
                                "/reference.urdf'\n[limits]\nvelocity_rad_s = 0.04\n";
  const std::string by_arm = "verify in.csv --arm slow.toml";
  EXPECT_EQ("qal verify: in.csv: 2 violations\n", Qal(by_arm).err);
  const std::string assumed =
      "  joint acceleration, joint 4: 0.2 rad/s^2 at sample 2 (line 4), 2 s; limit 0.16 rad/s^2 "
      "(assumed)\n";
  const ToolRun note = Qal(by_arm + " --max-joint-speed 1");
  EXPECT_EQ(0, note.status) << note.err;
  EXPECT_NE(std::string::npos, note.out.find(":\n" + assumed + "\nno violation\n")) << note.out;
  const ToolRun strict = Qal(by_arm + " --max-joint-speed 1 --strict");
  EXPECT_EQ(1, strict.status);
  EXPECT_NE(std::string::npos, strict.out.find("\nviolations:\n" + assumed)) << strict.out;
}

TEST_F(Verify, PrintsNoNanHoweverFewTheSamples) {
  for (const char* command : {"head -n 2 in.csv", "head -n 3 in.csv"}) {
    for (const char* format : {"", "--json "}) {
      const ToolRun run = Shell(std::string(command) + " | " QAL_BINARY " verify " + format + "-");
      EXPECT_EQ(0, run.status) << run.err;
      for (const char* word : {"nan", "inf"}) {
        EXPECT_EQ(std::string::npos, run.out.find(word)) << run.out;
      }
    }
  }
}

}  // namespace
