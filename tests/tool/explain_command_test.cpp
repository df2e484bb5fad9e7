#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <vector>

#include "qal_run.h"

namespace {

using Explain = InOwnFolder;

const std::string kBinary = QAL_BINARY;

// A command as a user pastes it into a shell.
ToolRun Pasted(const std::string& command) {
  return Shell("PATH=" + kBinary.substr(0, kBinary.rfind('/')) + ":$PATH; " + command);
}

// What `qal explain` says of what fails.
Json Explained(const std::string& arguments) {
  const ToolRun run = Qal("explain " + arguments + " --json");
  EXPECT_EQ(1, run.status) << run.err;
  const Json why = run.out.empty() ? Json() : Json::parse(run.out)["explanation"];
  EXPECT_FALSE(why["ok"]);
  EXPECT_EQ(1, std::count(run.err.begin(), run.err.end(), '\n')) << run.err;
  return why;
}

Json RemedyOf(const Json& why, const std::string& kind) {
  for (const Json& remedy : why["remedies"]) {
    if (remedy["kind"] == kind) return remedy;
  }
  return {};
}

const std::string kFrom = "--from 0 0.3 0.2 0 1 0 ";

// One of each command and cause; on another arm, in other units and with a name that a shell cuts
// in two. Every command that is told works as it stands, and says what was given.
TEST_F(Explain, EveryCommandThatItTellsWorks) {
  std::ofstream("an arm's.toml") << "description = '" QAL_ARMS_DIR
                                    "/service_parallel.urdf'\n[tool]\nxyz = [0, 0, 0.1]\n";
  std::ofstream("poses.csv") << "time_s,x_m,y_m,z_m,qw,qx,qy,qz\n0,0.45,0.1,0.5,0,0,1,0\n"
                                "0.1,0.451,0.1,0.5,0,0,1,0\n0.2,0.9,0.1,0.5,0,0,1,0\n";
  const struct {
    std::string arguments;
    const char* cause;
    std::set<std::string> commands;  // at least of these kinds
    std::string given;               // in each of them
  } rows[] = {
      {"line " + kFrom + "--by 0.5 0 0", "out_of_reach", {"shift", "end"}, ""},
      {"line --deg --mm --from 0 17 11 0 57 0 --by 500 0 0 --speed 100 --csv 'a b.csv'",
       "out_of_reach",
       {"shift", "end"},
       " --csv 'a b.csv'"},
      {"line " + kFrom + "--by 0.5 0 0 --profile ramp --speed 20",
       "out_of_reach",
       {"shift", "end"},
       " --profile ramp --speed 20"},
      {"line " + kFrom + "--by -0.9 0 0", "joint_range", {"orientation", "shift", "end"}, ""},
      {"line " + kFrom + "--to 0.1 0.3 0.2 2.5 -1 -2.5", "request", {"end", "joint_move"}, ""},
      {"line --from 0.2 0.3 0.2 0.4 0 0.1 --by -0.1 0.1 0",
       "singularity",
       {"start", "joint_move"},
       ""},
      {"line --from -1.3 -0.2 -1.8 0.8 1.6 1.8 --by 0.2 0.5 -0.5",
       "branch_ends",
       {"start", "end"},
       ""},
      {"line --arm \"an arm's.toml\" --deg --from 0 -120 -60 0 90 0 --by 0 0 0.9",
       "out_of_reach",
       {"end"},
       " --arm 'an arm'\\''s.toml'"},
      {"pose --pose 2000 0 500 --rpy 0 90 0 --mm --deg", "out_of_reach", {"shift"}, " --mm"},
      {"pose --pose 0.45 0.1 0.5 0 0 1 0 --near 0 0.3 0.2 0 1 0 --step-bound 0.2",
       "step_bound",
       {"step_bound", "start", "shift", "orientation"},
       " --pose "},
      {"poses poses.csv", "out_of_reach", {}, " --file poses.csv"},
      {"joint --deg --from 0 0 0 0 60 0 --to 10 0 0 0 60 190", "joint_range", {"end"}, ""},
      {"joint --from 0 0 0 0 1 0 --to-pose 2 0 0", "out_of_reach", {"shift"}, ""},
  };
  for (const auto& [arguments, cause, commands, given] : rows) {
    SCOPED_TRACE(arguments);
    const Json why = Explained(arguments);
    EXPECT_EQ(cause, why["cause"]) << why["text"];
    std::set<std::string> told;
    for (const Json& remedy : why["remedies"]) {
      if (remedy["command"].is_null()) continue;
      const std::string command = remedy["command"];
      const ToolRun run = Pasted(command);
      EXPECT_EQ(0, run.status) << command << '\n' << run.err;
      EXPECT_NE(std::string::npos, command.find(given)) << command;
      told.insert(remedy["kind"]);
    }
    for (const std::string& kind : commands) EXPECT_EQ(1, told.count(kind)) << kind;
    const std::string table = Qal("explain " + arguments).out;
    for (const Json& remedy : why["remedies"]) {
      if (remedy["command"].is_null()) continue;
      EXPECT_NE(std::string::npos, table.find("   " + remedy["command"].get<std::string>() + '\n'));
    }
  }
}

// The numbers behind an option of a command.
std::vector<double> NumbersBehind(const std::string& option, const std::string& command) {
  std::istringstream words(command.substr(command.find(option) + option.size()));
  std::vector<double> numbers;
  for (double number = 0; words >> number;) numbers.push_back(number);
  return numbers;
}

// The same line in radians and in degrees: the start that is told for it is the same to the bit.
TEST_F(Explain, NumbersOfCommandsReadBackAsTheyWere) {
  constexpr double kDegreesPerRad = 180 / 3.14159265358979323846;
  std::ostringstream rad;
  std::ostringstream deg;
  rad.precision(17);
  for (const double joint : {10.0, 17.0, 11.0, 5.0, 57.0, 20.0}) {
    rad << joint / kDegreesPerRad << ' ';
    deg << joint << ' ';
  }
  const std::string by = "--by 0.5 0 0";
  const std::string in_rad =
      RemedyOf(Explained("line --from " + rad.str() + by), "shift").at("command");
  const std::string in_deg =
      RemedyOf(Explained("line --deg --from " + deg.str() + by), "shift").at("command");
  std::vector<double> degrees = NumbersBehind("--from ", in_deg);
  if (in_deg.find("--deg") != std::string::npos) {
    for (double& joint : degrees) joint /= kDegreesPerRad;
  }
  ASSERT_EQ(6u, degrees.size()) << in_deg;
  EXPECT_EQ(NumbersBehind("--from ", in_rad), degrees) << in_deg;
}

// The point is on the way; its solutions are those of `ik --all`, from the joints before.
TEST_F(Explain, TellsThePointAndItsSolutions) {
  const Json why = Explained("line " + kFrom + "--by -0.9 0 0");
  const Json& point = why["point"];
  const double along = point["along"];
  EXPECT_NEAR(0.9 * along, point["distance_m"], 1e-9);
  EXPECT_NEAR(point["index"].get<double>() * 0.005, point["time_s"], 1e-9);
  for (size_t k = 0; k < 3; ++k) {
    const double from = why["path_m"][0][k];
    const double to = why["path_m"][1][k];
    EXPECT_NEAR(from + along * (to - from), point["position_m"][k], 1e-9);
  }
  const auto words = [](const Json& list) {
    return list.dump().substr(1, list.dump().size() - 2) + ' ';
  };
  const Json all = QalJson("ik --all --pose " + words(point["position_m"]) + words(point["wxyz"]) +
                           "--near " + words(why["before_rad"]))["solutions"];
  ASSERT_EQ(all.size(), why["solutions"].size());
  std::set<std::string> branches;
  for (const Json& solution : all) branches.insert(solution["branch"]);
  double before = 0;
  for (const Json& solution : why["solutions"]) {
    EXPECT_EQ(1, branches.count(solution["branch"])) << solution;
    EXPECT_FALSE(solution["refused"].is_null());
    EXPECT_LE(before, solution["distance_rad"].get<double>());
    before = solution["distance_rad"];
  }
}

TEST_F(Explain, SaysThatItWorksAndWhichStartsComplete) {
  const std::string line = "--from 0.5 -0.2 0.6 0.3 1.2 0.4 --by 0.1 0.1 0 ";
  const ToolRun works = Qal("explain line " + line);
  EXPECT_EQ(0, works.status) << works.err;
  EXPECT_NE(std::string::npos, works.out.find("the line works, in "));
  EXPECT_NE(std::string::npos, works.out.find("limited by "));
  const Json all = QalJson("explain line " + line + "--branches")["explanation"];
  EXPECT_TRUE(all["ok"]);
  ASSERT_LT(1u, all["branches"].size());
  for (const Json& branch : all["branches"]) {
    const std::string joints = branch["joints_rad"].dump();
    const std::string by = "line --from " + joints.substr(1, joints.size() - 2) + " --by 0.1 0.1 0";
    const ToolRun run = Qal(by + " --json");
    EXPECT_EQ(branch["ok"].get<bool>() ? 0 : 1, run.status) << branch << run.err;
    if (run.status != 0) continue;
    // A whole number of cycles.
    EXPECT_NEAR(branch["duration_s"], Json::parse(run.out)["duration_s"], 0.005 + 1e-9);
  }
}

// The line to `far` is too long: each change is one of the file's keys, put in the place of the
// one that is there.
TEST_F(Explain, TellsTheKeysOfAProgram) {
  const std::string text =
      "start = {joints_deg = [0, -10, 10, 0, 90, 0]}\n[points]\n"
      "near = {xyz = [0.35, -0.15, 0.3], rpy_deg = [0, 180, 0]}\n"
      "far = {of = 'near', offset_base = [0.8, 0.1, 0]}\n[[step]]\njoint = 'near'\n"
      "[[step]]\nline = 'far'\n";
  std::ofstream("p.toml") << text;
  const Json why = Explained("program p.toml");
  EXPECT_EQ(0u,
            why["headline"].get<std::string>().find("p.toml, line 7, step 2 (line to 'far'): "));
  EXPECT_EQ(26u, why["path_m"].size());
  size_t keys = 0;
  for (const Json& remedy : why["remedies"]) {
    if (remedy["keys"].is_null()) continue;
    const std::string edit = remedy["keys"];
    const std::string place = "step 2: ";
    ASSERT_EQ(0u, edit.find(place)) << edit;
    std::string changed = text;
    const std::string old = "line = 'far'";
    changed.replace(changed.find(old), old.size(), edit.substr(place.size()));
    std::ofstream("q.toml") << changed;
    EXPECT_EQ(0, Qal("plan q.toml").status) << changed;
    ++keys;
  }
  EXPECT_LT(0u, keys);
  EXPECT_EQ(0, Qal("explain program " QAL_EXAMPLES_DIR "/welding_seam.toml").status);
}

// A tool is no option: the key of an arm file with which the same pose works.
TEST_F(Explain, TellsTheKeyOfATool) {
  const std::string pose = "--pose 1.2 0 0.5 --rpy 0 1.5 0";
  const std::string keys = RemedyOf(Explained("pose " + pose), "tool").at("keys");
  const size_t table = std::string("[tool] ").size();
  std::ofstream("arm.toml") << "description = '" QAL_ARMS_DIR "/reference.urdf'\n[tool]\n"
                            << keys.substr(table) << '\n';
  EXPECT_EQ(0, Qal("ik " + pose + " --arm arm.toml").status) << keys;
  EXPECT_EQ(1, Qal("ik " + pose).status);
}

}  // namespace
