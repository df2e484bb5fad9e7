#include "../../tools/ikcheck/report.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace qal::ikcheck;

// 0.5 is the worst number, and NaN is worse than that; of two that are as bad the first is kept.
TEST(Report, KeepsTheWorstCase) {
  const double nan = std::nan("");
  const struct {
    const char* words;
    bool good;
    double badness;
    const char* worst;
  } cases[] = {{"a", false, 0.1, "a"}, {"good", true, 9.0, "a"}, {"b", false, 0.5, "b"},
               {"c", false, 0.5, "b"}, {"d", false, 0.2, "b"},   {"e", false, nan, "e"},
               {"f", false, nan, "e"}, {"g", false, 9.0, "e"}};
  Report report;
  for (const auto& c : cases) {
    report.Judge(Finding::kWrongSolution, c.good, c.badness, [&] {
      return Case{c.words, {{"joints", {c.badness, 0.1}}}};
    });
    EXPECT_EQ(report.ToJson()["findings"][0]["case"]["words"], c.worst);
  }
  const Json finding = report.ToJson()["findings"][0];
  EXPECT_EQ(finding["count"], 7);
  EXPECT_EQ(finding["of"], 8);
  EXPECT_EQ(finding["case"]["joints"], Json::parse("[\"nan\", 0.1]"));

  // Another report's, as a child sends it, is counted like its cases.
  Report both;
  both.Judge(Finding::kWrongSolution, false, 9.0, [] { return Case{"ours"}; });
  both.Add(Json::from_cbor(Json::to_cbor(report.Packed())));
  both.Add(report.Packed());
  const Json sum = both.ToJson()["findings"][0];
  EXPECT_EQ(sum["count"], 15);
  EXPECT_EQ(sum["of"], 17);
  EXPECT_EQ(sum["case"], finding["case"]);
}

// What a library says of itself, and how a case is worded, must neither move a terminal's cursor
// nor begin a line.
TEST(Report, ShowsInTextWhatItHoldsAndNoControlCharacters) {
  Report report;
  report.library = "libik.so";
  report.interface["kinematics_hash"] = "x\033[2J\x80";
  report.rows = {{"first", {{"joint_sets", 20000}, {"error", 1.23456e-5}}}};
  report.unfinished = {{"first", "signal 9\n"}};
  report.stopped = "at \"last\": enough";
  report.Judge(Finding::kHang, false, 0.5, [] {
    return Case{"some\nwords", {{"joints", {0.5, 0.1}}}};
  });
  for (const char* part : {"x?[2J?\n", "20000", "1.23e-05", "\"first\", signal 9 \n", "enough\n",
                           "hang: 1 of 1\n", "some words\n", "0.5, 0.1\n"}) {
    EXPECT_NE(report.Text().find(part), std::string::npos) << part << report.Text();
  }
}

}  // namespace
