#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
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

// Findings of one check, with what it has to know of the arm.
Json CheckOnly(void (*check)(Session&, Row&), const Session::Options& options) {
  Report report;
  Session session(options, report);
  Row row;
  CheckForward(session, row);
  check(session, row);
  return report.ToJson()["findings"];
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
    {"prints", {"prints"}},
    {"print at load", {"prints"}},
    {"is for seven joints", {"not-six-joints"}},
    {"is for a free joint", {"free-parameters"}},
    {"translation only", {"not-full-pose"}},
    {"float", {"single-precision"}},
    {"late layout", {"solution-layout"}},
    {"nan forward", {"forward-not-pose", "wrong-solution"}},
    {"skewed forward", {"forward-not-pose", "loose-solution", "unsolved", "unsolved-singular"}},
    {"stuck", {"forward-stuck"}},
    {"wrong", {"wrong-solution", "missed-joints", "missed-singular"}},
    {"nan", {"non-finite-solution", "missed-joints", "missed-singular"}},
    {"leaves joint 5 free", {"free-joint"}},
    {"range", {"joint-out-of-range"}},
    {"unsolved", {"unsolved", "unsolved-singular"}},
    {"miss", {"missed-joints", "missed-singular"}},
    {"append", {"appends-on-failure"}},
    {"true", {"true-without-solution"}},
    {"accept nan", {"accepts-non-finite"}},
    {"drift", {"unrepeatable", "thread-unsafe"}},
    {"shared buffer", {"thread-unsafe"}},
    {"millimetres", {"length-unit"}, true},
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
}

INSTANTIATE_TEST_SUITE_P(Planted, Faults, testing::ValuesIn(kPlanted), [](const auto& test) {
  std::string name = test.param.fault;
  std::replace(name.begin(), name.end(), ' ', '_');
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
  const Json wrong = CheckOnly(CheckQuarterTurns, Options(QAL_FAULTY_SOLVER, "wrong"))[0];
  EXPECT_EQ(wrong["name"], "wrong-solution");
  const Json& worst = wrong["case"];
  EXPECT_EQ(worst["words"], "off by 0.01");
  EXPECT_EQ(worst["eetrans"].size() + worst["eerot"].size() + worst["joints"].size(), 18u);
  // All digits: joint 6 is off by just what has been planted.
  const double joint6 = worst["solution"][5];
  const double off = std::fmod(std::fabs(joint6) + 0.01, kPi / 2);
  EXPECT_LT(std::min(off, kPi / 2 - off), 1e-12) << joint6;
}

TEST(Ikcheck, KnowsTheLibrariesThatCannotBeUsed) {
  const auto library = [](const char* name) {
    return std::string(QAL_LIBRARIES) + "/lib" + name + ".so";
  };
  const Json plain = Check(library("plain_names"));
  EXPECT_EQ(Findings(plain), (Names{"plain-c-names", "forward-stuck", "missing-queries"}));
  EXPECT_EQ(plain["findings"][0]["case"]["words"], "ComputeIk, ComputeFk");
  EXPECT_EQ(plain["interface"]["names"], "plain C");

  const Json single = Check(library("single_precision"));
  EXPECT_EQ(Findings(single), Names{"single-precision"});
  const Json other = Check(library("other_namespace"));
  EXPECT_EQ(Findings(other), Names{"missing-functions"});
  EXPECT_EQ(other["stopped"], "at \"interface\": there is nothing to call");
  EXPECT_EQ(other["findings"][0]["case"]["words"],
            "my_arm::ComputeIk(double const*, double const*, double const*, "
            "ikfast::IkSolutionListBase<double>&)");
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
