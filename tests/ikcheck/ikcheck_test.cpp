#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <set>
#include <string>

#include "../../tools/ikcheck/checks.h"
#include "../../tools/ikcheck/measures.h"

namespace {

using namespace qal::ikcheck;
using Names = std::set<std::string>;

Session::Options Options(const std::string& library, const char* fault) {
  ::setenv("QAL_FOREIGN_FAULT", fault, 1);
  Session::Options options;
  options.library = library;
  options.poses = 300;
  if (std::string("hang") == fault) options.timeout_s = 0.2;
  return options;
}

Json Check(const std::string& library, const char* fault = "none") {
  return RunChecks(Options(library, fault)).ToJson();
}

// What one check finds, with what it has to know of the arm.
Json CheckOnly(void (*check)(Session&, Row&), const Session::Options& options) {
  Report report;
  Session session(options, report);
  Row row;
  CheckForward(session, row);
  check(session, row);
  report.rows = {row};
  return report.ToJson();
}

Names Findings(const Json& report) {
  Names names;
  for (const Json& finding : report["findings"]) names.insert(finding["name"]);
  return names;
}

struct Planted {
  const char* fault;
  Names found;
  bool sound = false;
  const char* words = "";  // somewhere in its finding

  friend std::ostream& operator<<(std::ostream& out, const Planted& planted) {
    return out << planted.fault;
  }
};

const Planted kPlanted[] = {
    {"none", {}, true},
    {"crash", {"crash"}},
    {"crash forward", {"crash"}},
    {"crash at load", {"crash"}},
    {"exit", {"exit"}},
    {"hang", {"hang"}},
    {"endless", {"hang"}},
    {"throws", {"exception"}},
    {"throws for nan", {"throws-non-finite"}, true},
    {"prints", {"prints"}},
    {"print at load", {"prints"}},
    {"is for seven joints", {"not-six-joints"}},
    {"is for a free joint", {"free-parameters"}},
    {"translation only", {"not-full-pose"}},
    {"float", {"single-precision"}},
    {"late layout", {"solution-layout"}},
    {"nan forward", {"forward-not-pose"}},
    {"skewed forward", {"forward-not-pose"}},
    {"stuck", {"forward-stuck"}},
    {"wrong", {"wrong-solution"}},
    {"longer tool",
     {"wrong-solution"},
     false,
     "tool frame differs: ComputeIk's, as ComputeFk sees it, is at xyz=\\\"0 0 -0.1"},
    {"higher base",
     {"wrong-solution"},
     false,
     "base frame differs: ComputeIk's, as ComputeFk sees it, is at xyz=\\\"0 0 0.1"},
    {"off by 2e-6", {"wrong-solution"}},
    {"off by 5e-7", {"loose-solution"}, true},
    {"off by 9e-5 at 0", {"loose-singular"}, true},
    {"off by 1.2e-4 at 0", {"wrong-solution"}},
    {"nan", {"non-finite-solution"}},
    {"leaves joint 5 free",
     {"free-joint"},
     false,
     "a joint that is free, read as 0: position off by "},
    {"takes 2e-5 for 0", {"loose-singular", "free-singular"}, true},
    {"frees joint 4 at 0 wrongly", {"free-joint"}},
    {"two a branch", {}, true},
    {"two a branch but the last", {"missed-joints"}},
    {"range", {"joint-out-of-range"}, false, "\"joint 2 at "},
    {"unsolved", {"unsolved"}},
    {"miss", {"missed-joints"}},
    {"append", {"appends-on-failure"}},
    {"finds joints and returns false", {"appends-on-failure"}},
    {"true", {"true-without-solution"}},
    {"finds nothing and returns true", {"true-without-solution"}},
    {"accept nan", {"accepts-non-finite"}},
    {"drift", {"unrepeatable"}},
    {"shared buffer", {"thread-unsafe"}},
    {"millimetres", {"length-unit"}, true, "reach 12"},
    {"loose", {"loose-solution"}, true},
    {"unsolved at 0", {"unsolved-singular"}, true},
    {"miss at 0", {"missed-singular"}, true},
    {"miss near 0", {"missed-singular"}, true},
    {"duplicate", {"duplicate-solution"}, true},
    {"minus pi", {"minus-pi"}, true},
    {"accept any matrix", {"accepts-non-rotation"}, true},
    {"clear", {"clears-list"}, true},
    {"count", {"needs-empty-list"}, true},
};

class Faults : public testing::TestWithParam<Planted> {};

TEST_P(Faults, AreFoundAndNothingElse) {
  const Json report = Check(QAL_FAULTY_SOLVER, GetParam().fault);
  EXPECT_EQ(Findings(report), GetParam().found) << report.dump(2);
  EXPECT_EQ(report["sound"], GetParam().sound);
  const std::string text = report["findings"].dump(-1, ' ', false, Json::error_handler_t::replace);
  EXPECT_NE(text.find(GetParam().words), std::string::npos) << text;
}

INSTANTIATE_TEST_SUITE_P(Planted, Faults, testing::ValuesIn(kPlanted), [](const auto& test) {
  std::string name = test.param.fault;
  const auto is_word = [](unsigned char c) { return std::isalnum(c) != 0; };
  std::replace_if(name.begin(), name.end(), std::not_fn(is_word), '_');
  return name;
});

// A call that doesn't return leaves a gap, and says so; the checks after it look at the rest.
TEST(Ikcheck, GoesOnAfterACrash) {
  const Json report = Check(QAL_FAULTY_SOLVER, "crash");
  EXPECT_EQ(report["stopped"], "");
  EXPECT_EQ(report["unfinished"][0]["check"], "random joints");
  EXPECT_GT(report["unfinished"][0]["lost_calls"], 1);
  for (const Json& check : report["checks"]) {
    EXPECT_GT(check.value("poses", 100), 10) << check;
  }
  EXPECT_EQ(report["checks"].back()["check"], "time per call, on this machine");

  // The case that is shown is one of those that crash.
  const Json& crash = report["findings"][0];
  EXPECT_LT(crash["count"].get<int>(), crash["of"].get<int>());
  EXPECT_EQ(crash["case"]["words"], "ComputeIk: signal 11 (Segmentation fault)");
  EXPECT_GT(crash["case"]["eetrans"][0], 0.05);
  EXPECT_LT(crash["case"]["eetrans"][2], 0.35);
}

TEST(Ikcheck, ShowsTheWorstCaseInFull) {
  const Json wrong =
      CheckOnly(CheckQuarterTurns, Options(QAL_FAULTY_SOLVER, "wrong"))["findings"][0];
  EXPECT_EQ(wrong["name"], "wrong-solution");
  const Json& worst = wrong["case"];
  const std::string words = worst["words"];
  EXPECT_EQ(words.rfind("position off by ", 0), 0u) << words;
  EXPECT_NE(words.find(" m, matrix elements by 0.01"), std::string::npos) << words;
  EXPECT_EQ(worst["eetrans"].size() + worst["eerot"].size() + worst["joints"].size(), 18u);
  // All digits: joint 6 is off by just what has been planted.
  const double joint6 = worst["solution"][5];
  const double off = std::fmod(std::fabs(joint6) + 0.01, kPi / 2);
  EXPECT_LT(std::min(off, kPi / 2 - off), 1e-12) << joint6;
}

// An error of 0.1 m is refused and shown. Twice 7.5 solutions a pose but one are as many as are
// counted; the joints that a pose was made from are in one of 15 the one that is left out.
TEST(Ikcheck, ShowsWhatWasRefusedAndCountsAllSolutions) {
  const auto row = [](const char* fault) {
    return CheckOnly(CheckRandomPoses, Options(QAL_FAULTY_SOLVER, fault))["checks"][0];
  };
  EXPECT_NEAR(row("longer tool")["largest_error"].get<double>(), 0.1, 1e-4);
  const Json gear = row("two a branch but the last");
  EXPECT_NEAR(gear["solutions"].get<double>() / 300, 14.0, 0.5);
  EXPECT_GT(gear["missed"], 10) << gear;
}

TEST(Ikcheck, KnowsTheLibrariesThatCannotBeUsed) {
  const auto library = [](const char* name) {
    return std::string(QAL_LIBRARIES) + "/lib" + name + ".so";
  };
  const Json plain = Check(library("plain_names"));
  EXPECT_EQ(Findings(plain), (Names{"plain-c-names", "forward-stuck", "missing-queries"}));
  const std::string recipe = std::string("; ") + kRecipe;
  EXPECT_EQ(plain["findings"][0]["case"]["words"], "ComputeIk, ComputeFk" + recipe);
  EXPECT_EQ(plain["interface"]["names"], "plain C");

  const Json single = Check(library("single_precision"));
  EXPECT_EQ(Findings(single), Names{"single-precision"});
  const Json other = Check(library("other_namespace"));
  EXPECT_EQ(Findings(other), Names{"missing-functions"});
  EXPECT_EQ(other["stopped"], "at \"interface\": there is nothing to call");
  EXPECT_EQ(other["findings"][0]["case"]["words"],
            "my_arm::ComputeIk(double const*, double const*, double const*, "
            "ikfast::IkSolutionListBase<double>&)" +
                recipe);
}

// The same seed draws the same poses, another one others.
TEST(Ikcheck, RepeatsItselfWithTheSameSeed) {
  const auto check = [](unsigned seed) {
    Session::Options options = Options(QAL_FAULTY_SOLVER, "wrong");
    options.seed = seed;
    return CheckOnly(CheckRandomPoses, options);
  };
  EXPECT_EQ(check(5), check(5));
  EXPECT_NE(check(5), check(6));
}

}  // namespace
