#include <gtest/gtest.h>

#include "run_qal.h"

namespace {

// Bad usage: status 2, nothing on standard output, and exactly one line.
struct BadUsage {
  const char* arguments;
  const char* line;
};

#define FROM "line --from 0 0.3 0.2 0 1 0 "

constexpr BadUsage kBadUsages[] = {
    {"", "qal: a command is expected; qal --help lists them"},
    {"fkk", "qal: 'fkk' is no command; qal --help lists them"},
    {"fk 1 2", "qal fk: '1' was not expected; qal fk --help lists the options"},
    // Numbers: how many, and each of them.
    {"fk", "qal fk: --joints: six joint angles [rad] expected, none given"},
    {"fk --deg --joints 1,2 3", "qal fk: --joints: six joint angles [deg] expected, 3 given"},
    {"fk --joints 1 2 3 x 5 6", "qal fk: --joints, value 4: 'x' is not a number"},
    {"fk --joints 1 2 3 -inf 5 6", "qal fk: --joints, value 4: '-inf' is not a finite number"},
    {"fk --joints 1 2 3 4 5 1e999",
     "qal fk: --joints, value 6: '1e999' is too large or too small for a number"},
    {"jog --axis x --step 0.1 --deg --joints 0 0 -171 0 0 0",
     "qal jog: --joints, value 3: -171 deg is outside the joint's range, -169.99999711284502 to "
     "169.99999711284502"},
    // Poses.
    {"ik --pose 0.4 0 0.5 0 0 -0 0",
     "qal ik: --pose: the quaternion is zero; qw qx qy qz of length 1 are expected"},
    {"ik --pose 0.4 0 0.5",
     "qal ik: --pose: x y z [m] qw qx qy qz, or x y z with --rpy, expected, 3 given"},
    {"ik --pose 0.4 0 0.5 1 0 0 0 --rpy 0 0 0",
     "qal ik: --pose: x y z [m] with --rpy expected, 7 given"},
    {"ik --pose 0.4 0 0.5 --rpy 0 0", "qal ik: --rpy: roll pitch yaw [rad] expected, 2 given"},
    {"ik --pose 0.4 0 0.5 1 0 0 0 --step-bound -1",
     "qal ik: --step-bound: -1 is not from 0 to 1000"},
    // Choices, and options that don't go together.
    {"jog --joints 0 0 0 0 0 0 --axis q", "qal jog: --axis: q not in {x,y,z,rx,ry,rz}"},
    {"jog --joints 0 0 0 0 0 0 --axis rz --step 0.1",
     "qal jog: --axis rz: turns are about the tool's axes, with --frame tool"},
    {FROM "--speed 5", "qal line: one of --to, --to-pose and --by is expected, for the end"},
    {FROM "--by 0 0 .1 --speed 2.5",
     "qal line: --speed: '2.5' is no whole number from 1 to 1000000000"},
    {FROM "--by 0 0 .1 --speed 0",
     "qal line: --speed: '0' is no whole number from 1 to 1000000000"},
    {FROM "--by 0 0 .1 --speed 5 --jerk 1", "qal line: --jerk does not go with --profile ramp"},
    {FROM "--by 0 0 .1 --profile fixed --speed 1 --precision 1",
     "qal line: --profile fixed: one of --speed and --precision is expected"},
    {FROM "--by 0 0 .1 --profile fixed --precision 1e-5",
     "qal line: --precision 1e-05: 5e+07 points on this line, at most 1e+06 are planned"},
    {"joint --from 0 0 0 0 0 0 --to 1 0 0 0 0 0 --acc 1 --speed 101",
     "qal joint: --speed: '101' is no whole number from 1 to 100"},
    {"joint --from 0 0 0 0 0 0 --to 1 0 0 0 0 0 --profile ramp --speed 1",
     "qal joint: --speed: '1' is no whole number from 2 to 1000000000"},
    // Files.
    {"fk --joints 0 0 0 0 0 0 --csv /nowhere/a.csv",
     "qal fk: cannot write /nowhere/a.csv: No such file or directory"},
    {"fk --joints 0 0 0 0 0 0 --csv /dev/full",
     "qal fk: cannot write /dev/full: No space left on device"},
    {"fk --joints 0 0 0 0 0 0 --json --csv -",
     "qal fk: --csv - and --json: only one of them can have standard output"},
};

TEST(Usage, BadOneIsAnsweredInOneLine) {
  for (const BadUsage& bad : kBadUsages) {
    const Outcome outcome = RunQal(bad.arguments);
    EXPECT_EQ(2, outcome.status) << bad.arguments;
    EXPECT_EQ("", outcome.out) << bad.arguments;
    EXPECT_EQ(std::string(bad.line) + "\n", outcome.err) << bad.arguments;
  }
}

// Whatever is wrong with a solver ends in one line that names it, and what it prints doesn't get
// into the data.
TEST(Solver, ThatMisbehavesIsNamed) {
  const auto run = [](const std::string& fault) {
    return RunQal("ik --pose 0.1 0.2 0.3 1 0 0 0 --json",
                  {"LD_LIBRARY_PATH=" QAL_FOREIGN_SOLVER_DIR, "QAL_FOREIGN_FAULT=" + fault});
  };
  const Outcome prints = run("prints");
  EXPECT_EQ(0, prints.status);
  EXPECT_EQ('{', prints.out[0]) << prints.out;
  EXPECT_EQ(0, prints.err.find("solver by stream\n"));
  const std::string path = QAL_FOREIGN_SOLVER_DIR "/libik.so";
  const std::string thrown = " (solver: " + path + ")";
  const std::string more = "; ikcheck " + path + " tells more";
  const std::tuple<const char*, int, std::string> faults[] = {
      {"throws an int", 1, "unexpected error of an unknown kind" + thrown},
      {"throws", 1, "unexpected error: no way" + thrown},
      {"has no memory", 1, "out of memory"},
      {"is for seven joints", 2, path + ": the solver has 7 joints, 6 are expected" + more},
      {"is for a free joint", 2,
       path + ": the solver has free parameters, none is expected" + more},
      {"has four joints", 2,
       path + ": the solver gives solutions of 4 joints, 6 are expected" + more},
      {"finds nothing and returns true", 2,
       path + ": the solver says that there are solutions and gives none" + more},
      {"finds joints and returns false", 2,
       path + ": the solver gives solutions and says that there are none" + more}};
  for (const auto& [fault, status, line] : faults) {
    const Outcome outcome = run(fault);
    EXPECT_EQ(status, outcome.status);
    EXPECT_EQ("", outcome.out);
    EXPECT_EQ("qal ik: " + line, LastLine(outcome.err));
  }
}

TEST(Output, ThatCannotBeWrittenIsBadUsageButAClosedPipeIsNot) {
  const std::string command = QAL_BINARY
      " line --from 0 0.3 0.2 0 1 0 --by 0 0.3 0 --speed 1 "
      "--profile fixed --json";
  const auto shell = [](const std::string& line) {
    return WEXITSTATUS(std::system(("bash -o pipefail -c '" + line + "'").c_str()));
  };
  const std::string err = FreshPath("err");
  EXPECT_EQ(0, shell(command + " 2>" + err + " | head -c 1 >" + FreshPath("head")));
  EXPECT_EQ("", FileContent(err));
  EXPECT_EQ(2, shell(command + " 2>" + err + " >/dev/full"));
  EXPECT_EQ("qal line: cannot write standard output: No space left on device\n", FileContent(err));
  EXPECT_EQ(2, shell(command + " 2>" + err + " >&-"));
}

TEST(Version, AndHelpGoToStandardOutput) {
  EXPECT_EQ("qal 1.0.0\n", RunQal("--version").out);
  for (const char* command : {"fk", "ik", "jog", "line", "joint"}) {
    const Outcome help = RunQal(std::string(command) + " --help");
    EXPECT_EQ(0, help.status);
    EXPECT_NE(std::string::npos, help.out.find(std::string("Example: qal ") + command));
    EXPECT_EQ("", help.err);
  }
}

}  // namespace
