#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "qal_run.h"

namespace {

using Plan = InOwnFolder;

const std::string kExamples = QAL_EXAMPLES_DIR "/";

// The examples keep every limit of the arm, in files of each format, and all of their zones.
TEST_F(Plan, KeepsEveryLimitInTheExamples) {
  const struct {
    const char* program;
    const char* file;
    size_t steps;
    size_t corners;
  } cases[] = {{"palletising", "m.csv", 322, 160},
               {"welding_seam", "m.json", 11, 6},
               {"inspection", "m.yaml", 16, 4}};
  for (const auto& [program, file, steps, corners] : cases) {
    SCOPED_TRACE(program);
    const Json plan =
        QalJson("plan --strict -o " + std::string(file) + " " + kExamples + program + ".toml");
    EXPECT_EQ(steps, plan["steps"].size());
    EXPECT_EQ(corners, plan["corners"].size());
    for (const Json& corner : plan["corners"]) EXPECT_TRUE(corner["kept"]) << corner;
    const ToolRun verified = Qal("verify --strict " + std::string(file));
    EXPECT_EQ(0, verified.status) << verified.out;
  }
}

// The seam's lines, arc and zones are at 20 mm/s throughout, but for its start and its end.
TEST_F(Plan, KeepsTheToolSpeedThroughCorners) {
  const Json plan = QalJson("plan " + kExamples + "welding_seam.toml");
  constexpr size_t kFirst = 4;  // of the seam's steps, from 0
  constexpr size_t kBehind = 9;
  constexpr double kRampS = 0.25;
  constexpr double kCycleS = 0.005;
  const double begin_s = plan["steps"][kFirst]["begin_s"].get<double>() + kRampS;
  const double end_s = plan["steps"][kBehind]["begin_s"].get<double>() - kRampS;
  for (const Json& slow : plan["slow_stretches"]) {
    EXPECT_TRUE(slow["end_s"] < begin_s || slow["begin_s"] > end_s) << slow;
  }
  double slowest = 1;
  double fastest = 0;
  for (size_t i = 1; i < plan["time_s"].size(); ++i) {
    const double time_s = plan["time_s"][i];
    if (time_s < begin_s || time_s > end_s) continue;
    const Json& a = plan["position_m"][i - 1];
    const Json& b = plan["position_m"][i];
    double way_m = 0;
    for (size_t k = 0; k < 3; ++k) {
      way_m = std::hypot(way_m, b[k].get<double>() - a[k].get<double>());
    }
    slowest = std::min(slowest, way_m / kCycleS);
    fastest = std::max(fastest, way_m / kCycleS);
  }
  // A chord is shorter than its arc, by 5e-5 of it on a radius of 3 mm.
  EXPECT_GT(slowest, 0.02 * (1 - 1e-3));
  EXPECT_LT(fastest, 0.02 * (1 + 1e-6));
}

TEST_F(Plan, SaysWhichStepFailsAndWritesNothing) {
  const std::string begin = "start = {joints_rad = [0, 0.3, 0.2, 0, 1, 0]}\n[[step]]\n";
  const std::pair<const char*, const char*> cases[] = {
      {"line = {of = 'a'}\n",
       "qal plan: p.toml, line 3, step 1, line, of: no point 'a'; there are none"},
      {"wait_s = 1\n[[step]]\nrepeat = 2\nsteps = [{line = {joints_rad = [0, 0.3, 0.2, 0, 1, 0]}}, "
       "{line = {xyz = [1.5, 0, 0.5], rpy = [0, 1.5, 0]}}]\n",
       "qal plan: p.toml, line 6, step 2.2, repetition 1 (line): "}};
  for (const auto& [steps, message] : cases) {
    std::ofstream("p.toml") << begin << steps;
    const ToolRun run = Qal("plan p.toml -o m.csv");
    EXPECT_NE(0, run.status);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(0u, run.err.find(message)) << run.err;
    EXPECT_EQ(1, std::count(run.err.begin(), run.err.end(), '\n')) << run.err;
    EXPECT_EQ("p.toml\n", Files());
  }
  EXPECT_EQ(2, Qal("plan p.toml -o m.txt").status);
}

}  // namespace
