#include "../../tools/ikcheck/report.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace {

using namespace qal::ikcheck;

void JudgeBad(Report& report, Finding finding, double badness, const std::string& words) {
  report.Judge(finding, false, badness, [&] { return Case{words, {{"joints", {badness, 0.1}}}}; });
}

// 0.5 is the worst number, and NaN is worse than that; of two that are as bad the first is kept.
TEST(Report, KeepsTheWorstCase) {
  Report report;
  const auto worst = [&] { return report.ToJson()["findings"][0]["case"]["words"]; };
  JudgeBad(report, Finding::kWrongSolution, 0.1, "a");
  report.Judge(Finding::kWrongSolution, true, 9.0, [] { return Case{"good"}; });
  EXPECT_EQ(worst(), "a");
  JudgeBad(report, Finding::kWrongSolution, 0.5, "b");
  JudgeBad(report, Finding::kWrongSolution, 0.5, "c");
  JudgeBad(report, Finding::kWrongSolution, 0.2, "d");
  EXPECT_EQ(worst(), "b");
  JudgeBad(report, Finding::kWrongSolution, std::nan(""), "e");
  JudgeBad(report, Finding::kWrongSolution, std::nan(""), "f");
  JudgeBad(report, Finding::kWrongSolution, 9.0, "g");
  EXPECT_EQ(worst(), "e");
  const Json finding = report.ToJson()["findings"][0];
  EXPECT_EQ(finding["count"], 7);
  EXPECT_EQ(finding["of"], 8);
  EXPECT_EQ(finding["case"]["joints"], Json::parse("[\"nan\", 0.1]"));
}

TEST(Report, IsSoundWithNotesAlone) {
  Report report;
  report.Passed(Finding::kCrash);
  EXPECT_FALSE(report.HasFindings());
  JudgeBad(report, Finding::kMinusPi, 0, "");
  EXPECT_TRUE(report.HasFindings());
  EXPECT_TRUE(report.ToJson()["sound"]);
  JudgeBad(report, Finding::kCrash, 0, "");
  EXPECT_TRUE(report.HasFaults());
  EXPECT_FALSE(report.ToJson()["sound"]);
}

TEST(Report, PutsRowsWithTheSameFiguresBelowEachOther) {
  Report report;
  report.library = "libik.so";
  report.interface["kinematics_hash"] = "x\033[2J\x80";  // a terminal must not obey it
  report.rows = {{"alone", {{"a", 1}}},
                 {"first", {{"asked_for", 20000}, {"error", 1.23456e-5}}},
                 {"second", {{"asked_for", 7}, {"error", 12345.6}}},
                 {"last", {{"a", 1}, {"two_words", "x"}}}};
  report.unfinished = {{"first", 3}};
  report.stopped = "at \"last\": enough";
  JudgeBad(report, Finding::kHang, 0.5, "some\nwords");
  EXPECT_EQ(report.Text(),
            "ikcheck libik.so\n"
            "\n"
            "  kinematics hash                 x?[2J?\n"
            "  alone                           a 1\n"
            "\n"
            "                                  asked for    error\n"
            "  first                               20000  1.23e-05\n"
            "  second                                  7    12346\n"
            "\n"
            "  last                            a 1, two words x\n"
            "\n"
            "  not finished: \"first\", 3 calls did not return\n"
            "  stopped at \"last\": enough\n"
            "  fault hang: 1 of 1\n"
            "    expected: every call comes to an end\n"
            "    worst: some words\n"
            "      joints   0.5, 0.1\n");
}

TEST(Findings, HaveNamesOfTheirOwnFaultsFirst) {
  std::set<std::string> names;
  bool notes = false;
  for (size_t i = 0; i < kFindingCount; ++i) {
    const FindingKind& kind = KindOf(static_cast<Finding>(i));
    EXPECT_TRUE(names.insert(kind.name).second) << kind.name;
    EXPECT_FALSE(kind.fault && notes) << kind.name;
    notes = !kind.fault;
  }
  EXPECT_STREQ(KindOf(Finding::kOtherArm).name, "other-arm");
  EXPECT_STREQ(KindOf(Finding::kNeedsEmptyList).name, "needs-empty-list");
}

}  // namespace
