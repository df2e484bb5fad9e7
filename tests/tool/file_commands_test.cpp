#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "qal_run.h"

namespace {

class Convert : public InOwnFolder {
 protected:
  Convert() { std::ofstream("in.csv") << kFourRows; }
};
using Verify = Convert;
using Plot = Convert;

// Where the tools are built without the page, they say so.
class Report : public Convert {
 protected:
  void SetUp() override {
    const ToolRun run = Qal("report in.csv -o page.html");
    if (run.status == 2 && run.err.find("this build has no report page") != std::string::npos) {
      GTEST_SKIP() << run.err;
    }
    EXPECT_EQ(0, run.status) << run.err;
  }

  // The data in a page.
  static Json DataOf(const std::string& page) {
    const std::string open = "id=\"report-data\">";
    const size_t begin = page.find(open) + open.size();
    return Json::parse(page.substr(begin, page.find("</script>", begin) - begin));
  }
};

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

TEST_F(Report, ShowsOneFileOrTwoWithTheVerdictThatIsAskedFor) {
  const Json one = DataOf(FileContent("page.html"));
  EXPECT_EQ("in.csv", one["title"]);
  EXPECT_EQ(4, one["motions"][0]["samples"]);
  EXPECT_EQ(true, one["motions"][0]["verdict"]["ok"]);
  const ToolRun two = Qal("report in.csv - -o - --max-joint-speed 0.15 <in.csv");
  EXPECT_EQ(0, two.status) << two.err;
  const Json json = DataOf(two.out);
  EXPECT_EQ("in.csv, standard input", json["title"]);
  ASSERT_EQ(2U, json["motions"].size());
  EXPECT_EQ("1 violation; worst: joint speed of joint 4, 133.3 % of its limit, at 3 s",
            json["motions"][1]["verdict"]["headline"]);
}

TEST_F(Report, IsWrittenBesidesTheAnswerOfOtherCommands) {
  const ToolRun verify = Qal("verify in.csv --max-joint-speed 0.15 --report verify.html");
  EXPECT_EQ(1, verify.status);
  EXPECT_EQ(Qal("verify in.csv --max-joint-speed 0.15").out, verify.out);
  EXPECT_EQ(false, DataOf(FileContent("verify.html"))["motions"][0]["verdict"]["ok"]);

  EXPECT_EQ(0, Qal("joint --from 0 0 0 0 1 0 --to 0.1 0 0 0 1 0 --report move.html").status);
  const Json move = DataOf(FileContent("move.html"));
  EXPECT_EQ("qal joint", move["title"]);
  EXPECT_EQ("own", move["motions"][0]["rates"]);
}

// A corner is where the steps' own ways meet: the motion passes it within its zone.
TEST_F(Report, OfAProgramHasItsStepsAndCorners) {
  std::ofstream("arc.toml") << R"(
start = "ready"
[points]
ready = {joints_rad = [0, 0.3, 0.2, 0, 1, 0]}
side = {of = "ready", offset_base = [0, 0.1, 0]}
up = {of = "ready", offset_base = [0.1, 0.1, 0.1]}
[limits]
zone_m = 0.02
[[step]]
line = "side"
[[step]]
arc_about = {centre = "ready", axis = [0, 0, 2], angle_deg = 60}
[[step]]
line = "up"
[[step]]
joint = "ready"
)";
  for (const std::string program : {"arc.toml", QAL_EXAMPLES_DIR "/welding_seam.toml"}) {
    const ToolRun plan = Qal("plan " + program + " -o motion.csv --report plan.html");
    ASSERT_EQ(0, plan.status) << plan.err;
    const Json motion = DataOf(FileContent("plan.html"))["motions"][0];
    EXPECT_EQ(0U, motion["steps"][0]["name"].get<std::string>().find("step 1: "));
    const Json plan_json = QalJson("plan " + program);
    ASSERT_EQ(plan_json["corners"].size(), motion["corners"].size());
    EXPECT_LE(3U, motion["corners"].size());
    for (const Json& corner : motion["corners"]) {
      double nearest = 1;
      for (const Json& at : plan_json["position_m"]) {
        const Json& there = corner["position_m"];
        nearest = std::min(nearest, std::hypot(at[0].get<double>() - there[0].get<double>(),
                                               at[1].get<double>() - there[1].get<double>(),
                                               at[2].get<double>() - there[2].get<double>()));
      }
      EXPECT_LT(nearest, corner["radius_m"].get<double>()) << program << corner;
    }
  }
}

TEST_F(Report, IsRefusedInOneLine) {
  std::ofstream("empty.csv") << "time_s,q1_rad,q2_rad,q3_rad,q4_rad,q5_rad,q6_rad\n";
  std::ofstream("back.csv") << kFourRows << "2,0,0,0,0,0,0\n";
  const struct {
    int status;
    const char* arguments;
    const char* message;
  } rows[] = {
      {2, "report gone.csv -o a.html", "report: cannot read gone.csv: No such file or directory"},
      {2, "report empty.csv -o a.html", "report: empty.csv: line 1: no row below the header"},
      {2, "report in.csv -o /gone/a.html",
       "report: cannot write /gone/a.html: No such file or directory"},
      {2, "report in.csv in.csv -o in.csv",
       "report: in.csv is the file that is shown; -o would replace it"},
      {2, "report - - -o a.html",
       "report: standard input has one file; the name of the other is expected"},
      {2, "verify in.csv --report -",
       "verify: --report: standard output has the answer; the name of a file is expected"},
      {1, "report back.csv -o a.html",
       "report: back.csv: sample 4 (line 6): the time goes back from 3 to 2 s; this can't be "
       "played or drawn"},
  };
  for (const auto& [status, arguments, message] : rows) {
    const ToolRun run = Qal(arguments);
    EXPECT_EQ(status, run.status) << arguments;
    EXPECT_EQ(std::string("qal ") + message, run.LastLine());
    EXPECT_EQ("(none)", FileContent("a.html"));
  }
  EXPECT_EQ(kFourRows, FileContent("in.csv"));
}

TEST_F(Plot, WritesTheSamePictureEachTime) {
  EXPECT_EQ(0, Qal("plot in.csv -o a.svg --only angle,tool --width 500").status);
  const std::string picture = Qal("plot in.csv --only angle,tool --width 500").out;
  EXPECT_EQ(FileContent("a.svg"), picture);
  EXPECT_EQ(0U, picture.find("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"500\""));
  EXPECT_EQ(std::string::npos, picture.find("joint speed"));
}

}  // namespace
