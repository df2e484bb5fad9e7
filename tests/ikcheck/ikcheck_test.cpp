#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <functional>
#include <set>
#include <string>

#include "../../solver/reference_arm.h"
#include "../../tools/ikcheck/report.h"
#include "../support/tool_run.h"

namespace {

using namespace qal::ikcheck;
using qal::closed_form::Joints;
using Names = std::set<std::string>;

using Ikcheck = InOwnFolder;

Json Check(const std::string& library, const std::string& fault = "none",
           const std::string& options = "") {
  const ToolRun run = Shell(
      "QAL_FOREIGN_FAULT='" + fault + "' timeout 20 " QAL_IKCHECK " --poses 300 --json " +
      (fault.find("hang") != std::string::npos ? "--timeout 0.2 " : "") + options + ' ' + library);
  const Json report = Json::parse(run.out, nullptr, false);
  EXPECT_FALSE(report.is_discarded()) << run.status << run.err;
  return report;
}

// The row of one check.
Json Row(const Json& report, const std::string& name) {
  for (const Json& row : report["checks"]) {
    if (row["check"] == name) return row;
  }
  return {};
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
    {"crash for nan", {"crash"}},
    {"exit at load", {"exit"}},
    {"exit 0", {"exit"}},
    {"exit 0 over all that is shared", {"exit"}},
    {"hang", {"hang"}},
    {"hang, closed", {"hang"}},
    {"hang, deaf", {"hang"}},
    {"endless", {"hang"}},
    {"throws", {"exception"}},
    {"throws for nan", {"throws-non-finite"}, true},
    {"prints", {"prints"}},
    {"prints a flood", {"prints"}},
    {"print at load", {"prints"}},
    {"position of four", {"writes-outside"}},
    {"rotation of sixteen", {"writes-outside"}},
    {"writes to its pose", {"writes-outside"}},
    {"overrun", {"heap-damage"}},
    {"leak", {"leaks-memory"}, false, "bytes kept by each"},
    {"cache", {}, true},
    {"flush at load",
     {"floating-point-mode"},
     false,
     "when loaded and queried: changed: denormal results are 0, denormal operands are 0"},
    {"rounds up", {"floating-point-mode"}, false, "ComputeIk: changed: rounding"},
    {"traps", {"floating-point-mode"}, false, "changed: traps"},
    {"other folder", {"changes-process"}, false, "working directory"},
    {"own handler", {"changes-process"}, false, "signal handlers"},
    {"closed output", {"changes-process"}, false, "standard files"},
    {"leaves a process", {"changes-process"}, false, "processes that go on"},
    {"two of it", {"changes-process"}, false, "processes that go on"},
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
    {"wrong after 70", {"wrong-solution"}},
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
    {"drift seldom", {"unrepeatable"}},
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

class Faults : public InOwnFolder, public testing::WithParamInterface<Planted> {};

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

// A check whose call doesn't return ends there, with the call shown; the others go on.
TEST_F(Ikcheck, GoesOnAfterACrash) {
  const Json report = Check(QAL_FAULTY_SOLVER, "crash for nan");
  EXPECT_EQ(report["stopped"], "");
  EXPECT_EQ(report["unfinished"].size(), 1u);
  EXPECT_EQ(report["unfinished"][0]["check"], "poses that are not finite");
  EXPECT_EQ(report["unfinished"][0]["reason"], "signal 11 (Segmentation fault)");
  EXPECT_EQ(report["checks"].back()["check"], "time per call, on this machine");
  const Json& crash = report["findings"][0];
  EXPECT_EQ(crash["count"], 1);
  EXPECT_GT(crash["of"], 1000);
  EXPECT_EQ(crash["case"]["words"], "ComputeIk: signal 11 (Segmentation fault)");
  EXPECT_EQ(crash["case"]["eetrans"][0], "nan");
}

// All digits of it: with joint 6 put right by just what has been planted, the pose is met.
TEST_F(Ikcheck, ShowsTheWorstCaseInFull) {
  const Json wrong = Check(QAL_FAULTY_SOLVER, "wrong")["findings"][0];
  EXPECT_EQ(wrong["name"], "wrong-solution");
  const Json& worst = wrong["case"];
  const std::string words = worst["words"];
  EXPECT_EQ(words.rfind("position off by ", 0), 0u) << words;
  EXPECT_NE(words.find(" m, matrix elements by 0.01"), std::string::npos) << words;
  auto joints = worst["solution"].get<Joints>();
  joints[5] += std::copysign(0.01, joints[5]);
  const auto tool = qal::closed_form::Forward(qal::reference_arm::kArm, joints.data());
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR(tool.position.element[i], worst["eetrans"].at(static_cast<size_t>(i)), 1e-14);
    for (int j = 0; j < 3; ++j) {
      EXPECT_NEAR(tool.rotation[i][j], worst["eerot"].at(static_cast<size_t>(3 * i + j)), 1e-14);
    }
  }
}

// An error of 0.1 m is refused and shown. Twice 7.5 solutions a pose but one are as many as are
// counted; the joints that a pose was made from are in one of 15 the one that is left out.
TEST_F(Ikcheck, ShowsWhatWasRefusedAndCountsAllSolutions) {
  const auto row = [](const char* fault) {
    return Row(Check(QAL_FAULTY_SOLVER, fault), "random joints");
  };
  EXPECT_NEAR(row("longer tool")["largest_error"].get<double>(), 0.1, 1e-4);
  const Json gear = row("two a branch but the last");
  EXPECT_NEAR(gear["solutions"].get<double>() / 300, 14.0, 0.5);
  EXPECT_GT(gear["missed"], 10) << gear;
}

TEST_F(Ikcheck, KnowsTheLibrariesThatCannotBeUsed) {
  const auto library = [](const char* name) {
    return std::string(QAL_LIBRARIES) + "/lib" + name + ".so";
  };
  const Json plain = Check(library("plain_names"));
  EXPECT_EQ(Findings(plain), (Names{"plain-c-names", "forward-stuck", "missing-queries"}));
  const std::string recipe = std::string("; ") + kRecipe;
  EXPECT_EQ(plain["findings"][0]["case"]["words"], "ComputeFk, ComputeIk" + recipe);
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
TEST_F(Ikcheck, RepeatsItselfWithTheSameSeed) {
  const auto check = [](int seed) {
    const Json report = Check(QAL_FAULTY_SOLVER, "wrong", "--seed " + std::to_string(seed));
    return std::pair(report["findings"], Row(report, "random joints"));
  };
  EXPECT_EQ(check(5), check(5));
  EXPECT_NE(check(5), check(6));
}

}  // namespace
