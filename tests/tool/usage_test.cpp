#include <gtest/gtest.h>

#include <tuple>

#include "qal_run.h"

namespace {

using Refusal = InOwnFolder;

// What a command with these arguments says, behind its name; "..." at the end is any text.
struct Row {
  const char* command;
  const char* arguments;
  const char* message;
};

#define FROM "--from 0 0.3 0.2 0 1 0 "

// One line on standard error, the last one; nothing on standard output, and no file is touched.
template <size_t kCount>
void ExpectRefused(int status, const Row (&rows)[kCount]) {
  std::ofstream("good.csv") << kFourRows;
  std::ofstream("repeated.csv") << kFourRows << "3,0,0,0,0,0,0\n";
  std::ofstream("out.csv") << "kept";
  for (const auto& [command, arguments, message] : rows) {
    SCOPED_TRACE(std::string(command) + ' ' + arguments);
    const ToolRun run =
        Qal(std::string(command) + ' ' + arguments + (status == 1 ? " --csv failed.csv" : ""));
    const std::string line =
        (*command == '\0' ? "qal" : std::string("qal ") + command) + ": " + message;
    const size_t dots = line.find("...");
    EXPECT_EQ(status, run.status);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(line.substr(0, dots), run.LastLine().substr(0, dots));
    EXPECT_TRUE(status == 1 || run.err == run.LastLine() + '\n') << run.err;
    EXPECT_EQ("good.csv\nout.csv\nrepeated.csv\n", Files());
    EXPECT_EQ("kept", FileContent("out.csv"));
  }
}

// clang-format off
TEST_F(Refusal, OfBadUsageIsOneLine) {
  constexpr Row kRows[] = {
      {"", "", "a command is expected; qal --help lists them"},
      {"", "fkk", "'fkk' is no command; qal --help lists them"},
      {"fk", "1 2", "'1' was not expected; qal fk --help lists the options"},
      // Numbers: how many, and each of them.
      {"fk", "", "--joints: six joint angles [rad] expected, none given"},
      {"fk", "--deg --joints 1,2 3", "--joints: six joint angles [deg] expected, 3 given"},
      {"fk", "--joints 1 2 3 x 5 6", "--joints, value 4: 'x' is not a number"},
      {"fk", "--joints 1 2 3 -inf 5 6", "--joints, value 4: '-inf' is not a finite number"},
      {"fk", "--joints 1 2 3 4 5 1e999", "--joints, value 6: '1e999' is too large or too small for a number"},
      {"jog", "--axis x --step 0.1 --deg --joints 0 0 -171 0 0 0", "--joints, value 3: -171 deg is outside the joint's range, -169.999997 to 169.999997"},
      // Poses.
      {"ik", "--pose 0.4 0 0.5 0 0 -0 0", "--pose: the quaternion is zero; qw qx qy qz of length 1 are expected"},
      {"ik", "--pose 0.4 0 0.5", "--pose: x y z [m] qw qx qy qz, or x y z with --rpy, expected, 3 given"},
      {"ik", "--pose 0.4 0 0.5 1 0 0 0 --rpy 0 0 0", "--pose: x y z [m] with --rpy expected, 7 given"},
      {"ik", "--pose 0.4 0 0.5 --rpy 0 0", "--rpy: roll pitch yaw [rad] expected, 2 given"},
      {"ik", "--pose 0 0 0 1 0 0 0 --step-bound -1", "--step-bound: -1 is not from 0 to 1000"},
      {"jog", "--axis x --step 0.1 --joints 0 0 90 0 0 0", "--joints, value 3: 90 rad is outside the joint's range, -2.96705968 to 2.96705968; are these degrees? --deg reads them"},
      // Arms, and files of points.
      {"fk", "--joints 0 0 0 0 0 0 --arm nowhere.urdf", "cannot read nowhere.urdf: No such file or directory"},
      {"verify", "good.csv --arm .", "cannot read .: Is a directory"},
      {"line", FROM "--by 0 0 .1 --speed 5 --arm good.csv", "good.csv, line 1: ..."},
      {"fk", "--file good.csv --joints 0 0 0 0 0 0", "--joints does not go with --file"},
      {"ik", "--file good.csv", "good.csv: line 1: no column 'x_m'; a header with x_m, y_m, z_m, qw, qx, qy, qz was expected, with commas between and no quotes"},
      {"ik", "--file - </dev/null", "standard input: line 1: no column 'x_m'..."},
      {"help", "fkk", "'fkk' is no command; qal help lists them"},
      // Choices, and options that don't go together.
      {"jog", "--joints 0 0 0 0 0 0 --axis q", "--axis: q not in {x,y,z,rx,ry,rz}; qal jog --help says how"},
      {"line", FROM "--speed 5", "one of --to, --to-pose and --by is expected, for the end"},
      {"line", FROM "--by 0 0 .1 --speed 2.5", "--speed: '2.5' is no whole number from 1 to 1000000000"},
      {"line", FROM "--by 0 0 .1 --speed 0", "--speed: '0' is no whole number from 1 to 1000000000"},
      {"line", FROM "--by 0 0 .1 --speed 5 --jerk 1", "--jerk does not go with --profile ramp"},
      {"line", FROM "--by 0 0 .1 --profile fixed --speed 1 --precision 1", "--profile fixed: one of --speed and --precision is expected"},
      {"joint", FROM "--to 1 0 0 0 0 0 --acc 1 --speed 101", "--speed: '101' is no whole number from 1 to 100"},
      {"joint", FROM "--to 1 0 0 0 0 0 --profile ramp --speed 1", "--speed: '1' is no whole number from 2 to 1000000000"},
      {"verify", "good.csv --max-joint-acc 1,2", "--max-joint-acc: one number or six expected, 2 given"},
      {"verify", "good.csv --max-deviation 1,1", "--max-deviation: one number expected, 2 given"},
      {"verify", "good.csv --max-tool-speed -1", "--max-tool-speed: -1 is below 0"},
      // Files.
      {"fk", "--joints 0 0 0 0 0 0 --csv /nowhere/a.csv", "cannot write /nowhere/a.csv: No such file or directory"},
      {"fk", "--joints 0 0 0 0 0 0 --csv /dev/full", "cannot write /dev/full: No space left on device"},
      {"fk", "--joints 0 0 0 0 0 0 --json --csv -", "--csv - and --json: only one of them can have standard output"},
      {"convert", "repeated.csv out.csv", "repeated.csv: sample 4 (line 6): the time 3 s is not after the one before, 3 s"},
      {"convert", "good.csv out.txt", "out.txt: the name tells no format; .csv, .json, .yaml or .yml, or --to csv, json or ros was expected"},
      {"convert", "good.csv --to json --full out.csv", "--full: only a CSV file has these columns"},
      {"convert", "good.csv --joint-names a,a,c,d,e,f out.csv", "--joint-names: a name stands twice"},
      {"convert", "--joint-names a,b,c good.csv out.csv", "--joint-names: six names expected, 3 given"},
      {"convert", "good.csv --from json out.csv", "good.csv: line 1, column 2: no valid JSON from here"},
  };
  ExpectRefused(2, kRows);
}

// The arm reaches 0.2786 m out along x from the start of the lines.
TEST_F(Refusal, OfWhatTheArmCannotDoSaysWhereAndWhy) {
  constexpr Row kRows[] = {
      {"ik", "--pose 2 0 0.5 1 0 0 0", "no solution at 2 0 0.5 m (orientation 1 0 0 0): out of reach, the solver finds no joints for it"},
      {"ik", "--pose 0.45 0.1 0.5 0 0 1 0 --near 0 0.3 0.2 0 1 0 --step-bound 0.2", "no solution at 0.45 0.1 0.5 m (orientation 0 0 1 0): none of its solutions is admissible; the nearest: joint 1 moves 0.218669 rad, 0.0186689 rad over the step bound of 0.2 rad"},
      {"jog", "--joints 0 0 0 0 1 0 --axis x --step 1", "no solution for 1 m along x of the base frame from 0.473224 0 0.747682 m (orientation 0.28154 0 0.95955 0): out of reach, the solver finds no joints for it"},
      {"line", FROM "--by 0.5 0 0 --speed 20", "no solution at point 706, 0.2786 m (55.7 %) along the line, at 0.802728 0 0.530869 m (orientation 0.0353908 0 0.999374 0): out of reach, the solver finds no joints for it"},
      {"line", FROM "--by 0.5 0 0 --speed 50 --profile fixed", "no solution at point 139, 0.279116 m (55.8 %) along the line, at..."},
      {"line", FROM "--by 0.2784 0 0 --speed 50 --profile fixed", "no solution at point 139, 0.2784 m (100 %) along the line, at 0.802528 0..."},
      {"line", FROM "--by 0.5 0 0 --precision 10 --profile fixed", "no solution at point 137, 0.2751 m (55 %) along the line, at 0.799229 0 0.530869 m (orientation 0.0353908 0 0.999374 0): joint 3 moves 0.0486821 rad, 0.00504886 rad over the step bound of 0.0436332 rad"},
      {"line", FROM "--by 0 0.002 0 --speed 10", "the line is too short for its ramps: 0.002 m, and the shortest that works is 0.0022 m; lower the speed"},
      // The same pose with the elbow the other way: the library would just append it.
      {"line", "--from 0.218669 0.203958 0.414227 0 0.952611 0.218669 --profile fixed --speed 1 --to 0.218669 2.031822 2.911058 0 2.911102 0.218669", "at point 0, ..."},
      {"line", FROM "--to 0 0.3 0.2 0 1.1 0 --speed 5", "the tool would have to turn: ..."},
      {"line", FROM "--to-pose 0.5 0 2 --speed 5", "the end is 1.46913132 m away on an axis..."},
      {"line", FROM "--by 0.01 0 0 --profile s-curve --acc 0.1 --jerk 10 --motor-rpm 3000", "the acceleration, 0.1 m/s^2, is built up within 20 ms; it has to be above 0.2 m/s^2"},
      {"line", FROM "--by 0.01 0 0 --profile s-curve --acc 1 --jerk 10 --motor-rpm 3", "at 0.524134..."},
      {"joint", FROM "--to 2.9 0 0 0 0 0 --speed 1 --acc 2", "70017 points, at most 46340 are planned..."},
      {"line", FROM "--by 0 0 .1 --profile fixed --precision 1e-5", "50000000 points, at most 1000000 are planned"},
      {"joint", FROM "--to-pose 2 0 0 --speed 1 --acc 1", "no solution at the end, 2 0 0 m (orientation 0.0353908 0 0.999374 0)..."},
  };
  ExpectRefused(1, kRows);
}
// clang-format on

// Whatever is wrong with a solver ends in one line that says so.
TEST_F(Refusal, OfASolverThatMisbehaves) {
  const std::string path = QAL_FOREIGN_SOLVER_DIR "/libik.so";
  const std::tuple<const char*, int, std::string> faults[] = {
      {"throws", 1, "the solver throws an exception (no way); ikcheck..."},
      {"has no memory", 1, "..."},
      {"is for seven joints", 2, path + ": the solver has 7 joints, 6 are expected"},
      {"is for a free joint", 2, path + ": the solver has free parameters (1), none is expected"},
      {"has four joints", 1, "the solver breaks its contract (..."},
      {"finds nothing and returns true", 1, "the solver breaks its contract (..."}};
  for (const auto& [fault, status, words] : faults) {
    SCOPED_TRACE(fault);
    const ToolRun refused =
        Shell("QAL_FOREIGN_FAULT='" + std::string(fault) +
              "' " QAL_BINARY " ik --pose 0.1 0.2 0.3 1 0 0 0 --json --arm " + path);
    EXPECT_EQ(status, refused.status);
    EXPECT_EQ("", refused.out);
    EXPECT_EQ(refused.err, refused.LastLine() + '\n');
    const std::string message =
        std::string("qal ik: ") +
        (status == 1 ? "no solution at 0.1 0.2 0.3 m (orientation 1 0 0 0): " : "") +
        words.substr(0, words.find("..."));
    EXPECT_EQ(message, refused.err.substr(0, message.size()));
  }
}

TEST_F(Refusal, OfASolverKeepsWhatItPrintsOutOfTheData) {
  const ToolRun run =
      Shell("QAL_FOREIGN_FAULT=prints " QAL_BINARY
            " ik --pose 0.1 0.2 0.3 1 0 0 0 --json --arm " QAL_FOREIGN_SOLVER_DIR "/libik.so");
  EXPECT_EQ(0, run.status) << run.err;
  EXPECT_EQ(0, run.out.find("{\n  \"arm\"")) << run.out;
  EXPECT_NE(std::string::npos, run.err.find("solver by stream\n"));
}

// Numbers that look like another unit are taken, with a note.
TEST_F(Refusal, IsNotForWhatOnlyLooksOdd) {
  EXPECT_EQ(
      "note: --joints, value 3: 90 rad is more than a turn; are these degrees? --deg reads them\n",
      Qal("fk --joints 0 0 90 0 0 0").err);
  const ToolRun far = Qal("ik --pose 350 0 700 0 0 1 0");
  EXPECT_EQ(0,
            far.err.find("note: --pose: 700 m is far; are these millimetres? --mm reads them\n"));
  EXPECT_EQ("", Qal("ik --mm --pose 350 0 700 0 0 1 0").err);
}

using Output = InOwnFolder;

TEST_F(Output, ThatCannotBeWrittenIsBadUsageButAClosedPipeIsNot) {
  const std::string command =
      QAL_BINARY " line " FROM "--by 0 0.3 0 --speed 1 --profile fixed --json";
  const ToolRun closed = Shell("bash -o pipefail -c '" + command + " | head -c 1'");
  EXPECT_EQ(0, closed.status);
  EXPECT_EQ(std::string::npos, closed.err.find("cannot write")) << closed.err;
  const ToolRun full = Shell(command + " >/dev/full");
  EXPECT_EQ(2, full.status);
  EXPECT_EQ("qal line: cannot write standard output: No space left on device", full.LastLine());
  EXPECT_EQ(2, Shell(command + " >&-").status);
}

TEST_F(Output, OfVersionAndHelpGoesToStandardOutput) {
  EXPECT_EQ("qal 1.0.0\narm: reference arm (built in), spherical wrist, hash qal-reference-arm-1\n",
            Qal("--version").out);
  EXPECT_EQ(Qal("--help").out, Qal("help").out);
  for (const std::string command : {"fk", "ik", "jog", "line", "joint", "convert", "verify"}) {
    const ToolRun help = Qal("help " + command);
    EXPECT_EQ(help.out, Qal(command + " --help").out);
    EXPECT_EQ(0, help.status);
    EXPECT_NE(std::string::npos, help.out.find("Example: qal " + command));
    EXPECT_EQ("", help.err);
  }
}

}  // namespace
