#include "../../io/report_reach.h"

#include <gtest/gtest.h>
#include <qal/model/chain.h>
#include <qal/model/rotations.h>

#include "../../io/reach_study.h"
#include "../../io/report_arm.h"
#include "../support/decoded.h"
#include "../support/refusal.h"

namespace qal::io {
namespace {

// The reference arm with a tool of its own: the page draws the study's, not the description's.
LoadedArm WithOwnTool() {
  Transform tool = FromRollPitchYaw({0.1, 0.2, 0.3});
  tool.position = {0.02, 0, 0.15};
  return {Arm::Reference().WithTool(tool).value(), "", "reference arm"};
}

// 6 x 2 x 4 cells, some of them out of reach.
ReportReach StudyOf(const LoadedArm& loaded) {
  ReachStudy study;
  study.box_min = {0.1, -0.2, 0.2};
  study.box_max = {1.3, 0.2, 1};
  study.step_m = 0.2;
  study.directions = 60;
  ReportReach report = {"qal 1", "study.h5", "a/study.h5", {}, {{"best_cell", nullptr}}};
  report.file = {ReachStudyJson(loaded, study).dump(), study, 0, *Reach(loaded.arm, study, 0, 48)};
  return report;
}

std::vector<uint32_t> WholeNumbers(const Json& json, size_t bytes) {
  EXPECT_EQ(bytes, json["bytes"]);
  const std::string values = json["values"];
  if (bytes == 1) {
    const auto decoded = Decoded<uint8_t>(values);
    return {decoded.begin(), decoded.end()};
  }
  const auto decoded = Decoded<uint16_t>(values);
  return {decoded.begin(), decoded.end()};
}

TEST(ReportReach, HoldsTheNumbersOfEveryCellAndTheArm) {
  const LoadedArm loaded = WithOwnTool();
  const ReportReach report = StudyOf(loaded);
  // Drawn is the study's arm, whatever arm is named.
  const Json json = ReportReachJson(report, {Arm::Reference(), "", "reference arm"});
  const Json& reach = json["reach"];
  EXPECT_EQ(Json({6, 2, 4}), reach["grid"]["count"]);
  EXPECT_DOUBLE_EQ(0.2, reach["grid"]["first_m"][0]);
  EXPECT_EQ(0.2, reach["grid"]["step_m"]);
  const auto directions = WholeNumbers(reach["reached_directions"], 1);
  const auto solutions = WholeNumbers(reach["solutions"], 2);
  const auto orientations = WholeNumbers(reach["orientation"], 1);
  const auto margins = Decoded<float>(reach["margin_rad"]);
  const auto singular = Decoded<float>(reach["smallest_singular_value"]);
  const auto joints = Decoded<float>(reach["joints_rad"]);
  ASSERT_EQ(48U, directions.size());
  size_t row = 0;
  for (size_t i = 0; i < 48; ++i) {
    const ReachCell& cell = report.file.cells[i];
    EXPECT_EQ(cell.directions, directions[i]);
    if (cell.directions == 0) continue;
    EXPECT_EQ(cell.solutions, solutions.at(row));
    EXPECT_EQ(cell.orientation, static_cast<int>(orientations.at(row)));
    EXPECT_EQ(static_cast<float>(cell.margin_rad), margins.at(row));
    EXPECT_EQ(static_cast<float>(cell.smallest_singular_value), singular.at(row));
    EXPECT_EQ(static_cast<float>(cell.joints[5]), joints.at(6 * row + 5));
    ++row;
  }
  EXPECT_EQ(row, solutions.size());
  EXPECT_TRUE(row > 20 && row < 48) << row;

  const Json drawn = ReportArmJson(loaded);
  EXPECT_EQ(drawn["axes"], json["arm"]["axes"]);
  EXPECT_EQ(drawn["tool"], json["arm"]["tool"]);
  EXPECT_EQ(drawn["joints"][2]["upper_rad"], json["arm"]["joints"][2]["upper_rad"]);
  EXPECT_EQ(report.summary, reach["summary"]);
}

TEST(ReportReach, HasThePosesOfAPlacement) {
  const LoadedArm loaded = WithOwnTool();
  ReportReach report = StudyOf(loaded);
  report.file.study.poses = {{{0.5, 0, 0.4}, {0, 1, 0, 0}}, {{0.4, -0.25, 0.6}, {0, 1, 0, 0}}};
  report.file.description = ReachStudyJson(loaded, report.file.study).dump();
  const Json reach = ReportReachJson(report, loaded)["reach"];
  EXPECT_EQ((std::vector<float>{0.5F, 0, 0.4F, 0.4F, -0.25F, 0.6F}),
            Decoded<float>(reach["poses_m"]));
}

TEST(ReportReach, IsOfWholeStudiesOfArmsThatCanBeDrawn) {
  const LoadedArm loaded = WithOwnTool();
  ReportReach report = StudyOf(loaded);
  const auto refusal = [&] { return Refusal([&] { (void)ReportReachJson(report, loaded); }); };
  Json study = Json::parse(report.file.description);
  study["at_zero"] = nullptr;
  report.file.description = study.dump();
  EXPECT_EQ("a/study.h5: its study doesn't say where the arm's axes are", refusal());
  report.file.cells.pop_back();
  EXPECT_EQ(
      "a/study.h5: it has 47 of the study's 48 cells; a report is of all: qal reach merge joins "
      "shards, qal reach --resume goes on from a .part",
      refusal());
}

}  // namespace
}  // namespace qal::io
