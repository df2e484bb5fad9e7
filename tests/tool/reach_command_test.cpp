#include <gtest/gtest.h>

#include <csignal>
#include <cstring>

#include "qal_run.h"

namespace {

using ReachCommand = InOwnFolder;

const std::string kBox = "reach --box 0.1 -0.2 0.2 1.3 0.2 1 --step 0.2 --directions 20 ";

// 6 x 2 x 4 cells in three shards of 16, merged in another order.
TEST_F(ReachCommand, MergesShardsToTheBytesOfOneRun) {
  const Json whole = QalJson(kBox + "-o whole.h5");
  EXPECT_EQ(48, whole["end_cell"]);
  EXPECT_GT(whole["cells_reached"], 20);
  EXPECT_LT(whole["cells_reached"], 48);
  for (const char* shard : {"1/3", "2/3", "3/3"}) {
    const ToolRun run = Qal(kBox + "--threads 1 --shard " + shard + " -o " + shard[0] + ".h5");
    ASSERT_EQ(0, run.status) << run.err;
  }
  EXPECT_EQ(whole, QalJson("reach merge 3.h5 1.h5 2.h5 -o merged.h5"));
  EXPECT_GT(FileContent("whole.h5").size(), 48U * 80);
  EXPECT_TRUE(FileContent("whole.h5") == FileContent("merged.h5"));
}

TEST_F(ReachCommand, RefusesInOneLine) {
  ASSERT_EQ(0, Qal(kBox + "-o whole.h5").status);
  ASSERT_EQ(0, Qal(kBox + "--shard 1/2 -o 1.h5").status);
  ASSERT_EQ(0, Qal(kBox + "--spins 2 --shard 2/2 -o other.h5").status);
  std::ofstream("text.h5") << "text";
  std::ofstream("cut.h5") << FileContent("whole.h5").substr(0, 6000);
  const struct {
    std::string arguments;
    const char* said;
  } kCases[] = {
      {"reach --step 0.1 -o a.h5", "--box is missing"},
      {"reach --box 0 0 0 1 1 -1 --step 0.1 -o a.h5", "the box extent along z is -1 m"},
      {"reach --box 0 0 0 1 1 1 --step 0 -o a.h5",
       "the step is 0 m; the nearest that works is 0.001 m"},
      {kBox + "--line -0.1 -o a.h5", "the line is -0.1 m; the nearest that works is 0 m"},
      {kBox + "--along 0 0 1 -o a.h5", "--along is the direction of --line, which is missing"},
      {kBox + "--shard 3/2 -o a.h5", "'3' is no whole number from 1 to 2"},
      {kBox + "--spins 2 -o whole.h5", "whole.h5 is there already, and of another study"},
      {kBox + "-o text.h5", "text.h5 is there already, and no file of a reach study"},
      {kBox + "-o none/a.h5", "cannot write none/a.h5.part"},
      {"reach merge 1.h5 -o a.h5", "the end is missing: cells 24 to 47 are in no file"},
      {"reach merge 1.h5 whole.h5 -o a.h5", "are in another file as well"},
      {"reach merge 1.h5 other.h5 -o a.h5", "of another study than"},
      {"reach merge cut.h5 -o a.h5", "cut.h5: no file of a reach study"},
  };
  for (const auto& [arguments, said] : kCases) {
    const ToolRun run = Qal(arguments);
    EXPECT_EQ(2, run.status) << arguments;
    EXPECT_NE(std::string::npos, run.err.find(said)) << run.err;
    EXPECT_EQ(run.err.size() - 1, run.err.find('\n')) << run.err;
    EXPECT_EQ("(none)", FileContent("a.h5"));
  }
}

// Three poses about a table, of which one is 3 m from another: no position of the base reaches
// both.
const std::string kTable =
    "x_m,y_m,z_m,qw,qx,qy,qz\n"
    "2,0.1,0.4,0,1,0,0\n"
    "2.2,-0.1,0.5,0,0.8,0.6,0\n";
const std::string kFarPose = "-1,0,0.4,0,1,0,0\n";
const std::string kPlaces = "reach --box 1 -0.6 0 2 0.6 0.2 --step 0.2 --poses ";

// Its poses as the base sees them from a position.
std::string SeenFrom(const Json& position) {
  const auto row = [&](double x, double y, double z, const char* orientation) {
    std::string text;
    for (const double value : {x - position[0].get<double>(), y - position[1].get<double>(),
                               z - position[2].get<double>()}) {
      text += std::to_string(value) + ',';
    }
    return text + orientation + '\n';
  };
  return "x_m,y_m,z_m,qw,qx,qy,qz\n" + row(2, 0.1, 0.4, "0,1,0,0") +
         row(2.2, -0.1, 0.5, "0,0.8,0.6,0");
}

TEST_F(ReachCommand, FindsWhereTheBaseReachesAllPoses) {
  std::ofstream("table.csv") << kTable;
  const Json whole = QalJson(kPlaces + "table.csv -o place.h5 --vti place.vti");
  EXPECT_EQ("placement", whole["study"]["kind"]);
  const Json& best = whole["best_positions"];
  ASSERT_EQ(5U, best.size());
  EXPECT_GT(whole["positions_reaching_all_poses"], 5);
  EXPECT_LT(whole["positions_reaching_all_poses"], 30);
  for (size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(2, best[i]["poses_reached"]);
    EXPECT_LE(best[i]["margin_rad"], best[i == 0 ? 0 : i - 1]["margin_rad"]);
    std::ofstream("seen.csv") << SeenFrom(best[i]["position_m"]);
    EXPECT_EQ(0, Qal("ik --file seen.csv").status);
  }
  for (const char* shard : {"1/2", "2/2"}) {
    ASSERT_EQ(0, Qal(kPlaces + "table.csv --shard " + shard + " -o " + shard[0] + ".h5").status);
  }
  ASSERT_EQ(0, Qal("reach merge 2.h5 1.h5 -o merged.h5 --vti merged.vti").status);
  EXPECT_TRUE(FileContent("place.h5") == FileContent("merged.h5"));
  EXPECT_TRUE(FileContent("place.vti") == FileContent("merged.vti"));
  // From above, both can be arrived at from fewer positions.
  const Json above = QalJson(kPlaces + "table.csv --line 0.3 --along 0 0 -1 -o above.h5");
  EXPECT_GT(above["positions_reaching_all_poses"], 0);
  EXPECT_LT(above["positions_reaching_all_poses"], whole["positions_reaching_all_poses"]);
  ASSERT_EQ(0, Qal("reach merge above.h5 -o again.h5").status);
  EXPECT_TRUE(FileContent("above.h5") == FileContent("again.h5"));
}

TEST_F(ReachCommand, SaysWhichPosesTheBestPositionMisses) {
  std::ofstream("far.csv") << kTable + kFarPose;
  const Json none = QalJson(kPlaces + "far.csv -o far.h5");
  EXPECT_EQ(0, none["positions_reaching_all_poses"]);
  EXPECT_EQ(Json::parse(R"([{"pose": 2, "line": 4}])"), none["missed_at_the_best_position"]);
  const std::string told = Qal(kPlaces + "far.csv -o far.h5").out;
  EXPECT_NE(std::string::npos, told.find("missed at the best position, of far.csv: line 4\n"))
      << told;
  // A file of as many other poses is another study's.
  std::ofstream("other.csv") << kTable + "-2,0,0.4,0,1,0,0\n";
  std::ofstream("joints.csv") << kFourRows;
  const std::pair<std::string, const char*> kRefused[] = {
      {"other.csv -o far.h5", "far.h5 is there already, and of another study"},
      {"far.csv --tilt 1 -o a.h5", "--tilt does not go with --poses"},
      {"joints.csv -o a.h5", "joints.csv: line 1"},
  };
  for (const auto& [arguments, said] : kRefused) {
    const ToolRun run = Qal(kPlaces + arguments);
    EXPECT_EQ(2, run.status) << arguments;
    EXPECT_NE(std::string::npos, run.err.find(said)) << run.err;
    EXPECT_EQ(run.err.size() - 1, run.err.find('\n')) << run.err;
  }
}

// ParaView's file: behind the offsets that it says the arrays have as many bytes as cells need.
TEST_F(ReachCommand, WritesTheCellsForParaView) {
  const Json study = QalJson(kBox + "-o whole.h5 --vti whole.vti");
  const std::string vti = FileContent("whole.vti");
  EXPECT_NE(std::string::npos, vti.find("WholeExtent=\"0 6 0 2 0 4\"")) << vti.substr(0, 1000);
  const size_t data = vti.find("<AppendedData encoding=\"raw\">\n_") + 31;
  const auto number = [&](size_t place, auto value) {
    std::memcpy(&value, vti.data() + data + place, sizeof value);
    return value;
  };
  const auto best = study["best_cell"]["cell"].get<size_t>();
  EXPECT_EQ(48U * 8, number(0, uint64_t{}));
  EXPECT_EQ(study["best_cell"]["directions"].get<double>() / 20, number(8 + best * 8, double{}));
  const size_t joints = vti.find("Name=\"joints\"");
  const size_t offset = std::stoul(vti.substr(vti.find("offset=\"", joints) + 8));
  EXPECT_EQ(48U * 48, number(offset, uint64_t{}));
  EXPECT_EQ(study["best_cell"]["joints_rad"][5].get<double>(),
            number(offset + 8 + best * 48 + 40, double{}));
  EXPECT_EQ("\n  </AppendedData>\n</VTKFile>\n", vti.substr(data + offset + 8 + 48 * 48));
  EXPECT_EQ(2, Qal(kBox + "--shard 1/2 -o 1.h5 --vti 1.vti").status);
}

// Stopped as soon as it has begun, and gone on from there, it has the bytes of one run.
TEST_F(ReachCommand, GoesOnFromWhereItWasStopped) {
  const std::string study = "reach --box -0.8 -0.8 0 0.8 0.8 0.8 --step 0.1 --directions 1000 ";
  const ToolRun stopped = Shell(QAL_BINARY " " + study +
                                "--threads 1 -o a.h5 &\n"
                                "until [ -e a.h5.part ]; do sleep 0.02; done\n"
                                "sleep 0.05; kill -TERM $!; wait $!");
  EXPECT_EQ(128 + SIGTERM, stopped.status);
  ASSERT_NE(std::string::npos, stopped.err.find("the same command with --resume goes on"))
      << stopped.err;
  EXPECT_EQ("(none)", FileContent("a.h5"));
  EXPECT_NE(std::string::npos, Qal(study + "-o a.h5").err.find("add --resume to go on"));
  ASSERT_EQ(0, Qal(study + "--resume -o a.h5").status);
  EXPECT_EQ("(none)", FileContent("a.h5.part"));
  ASSERT_EQ(0, Qal(study + "-o b.h5").status);
  EXPECT_TRUE(FileContent("a.h5") == FileContent("b.h5"));
}

TEST_F(ReachCommand, ReportsWholeStudiesAlone) {
  ASSERT_EQ(0, Qal(kBox + "-o whole.h5").status);
  ASSERT_EQ(0, Qal(kBox + "--shard 2/2 -o 2.h5").status);
  const ToolRun page = Qal("report whole.h5 -o - --arm " QAL_ARMS_DIR "/ceiling_spherical.urdf");
  if (page.err.find("no report page") != std::string::npos) GTEST_SKIP() << page.err;
  ASSERT_EQ(0, page.status) << page.err;
  EXPECT_NE(std::string::npos, page.err.find("the axes are not those of the study's arm"));
  EXPECT_NE(std::string::npos, page.out.find("\"title\":\"whole.h5\""));

  std::string other = FileContent("whole.h5");
  std::ofstream("cut.h5") << other.substr(0, 6000);
  std::ofstream("begun.h5.part") << FileContent("2.h5");
  std::ofstream("text.h5") << "time_s,q1_rad\n";
  other.replace(other.find("qal reach study"), 3, "any");
  std::ofstream("other") << other;
  const struct {
    const char* arguments;
    const char* said;
  } kCases[] = {
      {"2.h5", "2.h5: it has 24 of the study's 48 cells; a report is of all"},
      {"begun.h5.part", "begun.h5.part: it has 24 of the study's 48 cells"},
      {"cut.h5", "cut.h5: no file of a reach study: it is no HDF5 file, or not a whole one"},
      {"text.h5", "text.h5: no file of a reach study: it is no HDF5 file"},
      {"other", "other: no file of a reach study: its format is 'any reach study, version 1'"},
      {"gone.h5", "cannot read gone.h5"},
      {"whole.h5 2.h5", "OTHER is of trajectories, and whole.h5 is a reach study"},
      {"whole.h5 --strict", "--strict is of trajectories, and whole.h5 is a reach study"},
  };
  for (const auto& [arguments, said] : kCases) {
    const ToolRun run = Qal(std::string("report ") + arguments + " -o a.html");
    EXPECT_EQ(2, run.status) << arguments;
    EXPECT_NE(std::string::npos, run.err.find(said)) << run.err;
    EXPECT_EQ(run.err.size() - 1, run.err.find('\n')) << run.err;
    EXPECT_EQ("(none)", FileContent("a.html"));
  }
}

// Nothing is left to do: cells are those of the file, here with another margin in one.
TEST_F(ReachCommand, DoesNothingOfAStudyThatIsDone) {
  const auto margin = QalJson(kBox + "-o a.h5")["best_cell"]["margin_rad"].get<double>();
  std::string changed = FileContent("a.h5");
  const double other = margin + 1;
  const size_t place = changed.find({reinterpret_cast<const char*>(&margin), sizeof margin});
  ASSERT_NE(std::string::npos, place);
  std::memcpy(&changed[place], &other, sizeof other);
  std::ofstream("a.h5") << changed;
  EXPECT_EQ(other, QalJson(kBox + "--resume -o a.h5")["best_cell"]["margin_rad"].get<double>());
  EXPECT_TRUE(FileContent("a.h5") == changed);
  EXPECT_EQ(margin, QalJson(kBox + "-o a.h5")["best_cell"]["margin_rad"].get<double>());
}

}  // namespace
