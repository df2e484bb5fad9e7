#include <gtest/gtest.h>

#include "qal_run.h"

namespace {

using Refusal = InOwnFolder;

// What a command with these arguments says, behind its name; "..." at the end is any text.
struct Row {
  const char* command;
  const char* arguments;
  const char* message;
};

#define FOREIGN " --pose 0.1 0.2 0.3 1 0 0 0 --json --arm " QAL_FOREIGN_SOLVER_DIR "/libik.so"
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
      {"explain", "", "a command is expected; qal explain --help lists them"},
      {"explain", "lin", "'lin' is no command; qal explain --help lists them"},
      {"explain line", FROM "--by 0 0 .1 --profile ramp --speed 5 --branches", "--branches goes with --profile limited"},
      {"explain poses", "good.csv", "good.csv: line 1: no column 'x_m'..."},
      {"explain program", "good.csv", "good.csv, line 1: not well-formed TOML..."},
      {"", "fkk", "'fkk' is no command; qal --help lists them"},
      {"fk", "1 2", "'1' was not expected; qal fk --help lists the options"},
      // Numbers: how many, and each of them.
      {"fk", "--deg --joints 1,2 3", "--joints: six joint angles [deg] expected, 3 given"},
      {"fk", "--joints 1 2 3 x 5 6", "--joints, value 4: 'x' is not a number"},
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
      {"fk", "--file good.csv --joints 0 0 0 0 0 0", "--joints does not go with --file"},
      {"ik", "--file good.csv", "good.csv: line 1: no column 'x_m'; a header with x_m, y_m, z_m, qw, qx, qy, qz was expected, with commas between and no quotes"},
      {"ik", "--file - </dev/null", "standard input: line 1: no column 'x_m'..."},
      // Choices, and options that don't go together.
      {"jog", "--joints 0 0 0 0 0 0 --axis q", "--axis: q not in {x,y,z,rx,ry,rz}; qal jog --help says how"},
      {"line", FROM "--speed 5", "one of --to, --to-pose and --by is expected, for the end"},
      {"line", FROM "--by 0 0 .1 --profile ramp --speed 2.5", "--speed: '2.5' is no whole number from 1 to 1000000000"},
      {"line", FROM "--by 0 0 .1 --profile ramp --speed 5 --jerk 1", "--jerk does not go with --profile ramp"},
      {"line", FROM "--by 0 0 .1 --profile fixed --speed 1 --precision 1", "--profile fixed: one of --speed and --precision is expected"},
      {"joint", FROM "--to 1 0 0 0 0 0 --profile trapezoid --acc 1 --speed 101", "--speed: '101' is no whole number from 1 to 100"},
      {"joint", FROM "--to 1 0 0 0 0 0 --profile ramp --speed 1", "--speed: '1' is no whole number from 2 to 1000000000"},
      {"line", FROM "--by 0 0 .1 --mm --jerk 0", "--jerk: 0 is not from 0.001 to 1e+09"},
      {"line", FROM "--by 0 0 .1 --precision 1", "--precision does not go with --profile limited"},
      {"joint", FROM "--to 1 0 0 0 0 0 --acc 1", "--acc does not go with --profile limited"},
      {"joint", FROM "--to 1 0 0 0 0 0 --scale 0", "--scale: 0 is not from 0.01 to 100"},
      {"verify", "good.csv --max-joint-acc 1,2", "--max-joint-acc: one number or six expected, 2 given"},
      {"verify", "good.csv --max-deviation 1,1", "--max-deviation: one number expected, 2 given"},
      {"verify", "good.csv --max-tool-speed -1", "--max-tool-speed: -1 is below 0"},
      {"plot", "good.csv --only angle,sped", "--only: no plot is called 'sped'; there are 'angle', 'velocity', 'acceleration'..."},
      {"plot", "good.csv -o good.csv", "good.csv is the file that is shown; -o would replace it"},
      {"plot", "good.csv -o /nowhere/a.svg", "cannot write /nowhere/a.svg: No such file or directory"},
      {"plot", "good.csv --width 20", "--width: Value 20 not in range..."},
      // Files.
      {"fk", "--joints 0 0 0 0 0 0 --csv /nowhere/a.csv", "cannot write /nowhere/a.csv: No such file or directory"},
      {"fk", "--joints 0 0 0 0 0 0 --csv /dev/full", "cannot write /dev/full: No space left on device"},
      {"fk", "--joints 0 0 0 0 0 0 --json --csv -", "--csv - and --json: only one of them can have standard output"},
      {"convert", "repeated.csv out.csv", "repeated.csv: sample 4 (line 6): the time 3 s is not after the one before, 3 s"},
      {"convert", "good.csv --to json --full out.csv", "--full: only a CSV file has these columns"},
      {"convert", "good.csv --ros goal out.csv", "--ros: only a YAML file is for ROS"},
      {"convert", "good.csv --joint-names a,a,c,d,e,f out.csv", "--joint-names: a name stands twice"},
      {"convert", "--joint-names a,b,c good.csv out.csv", "--joint-names: six names expected, 3 given"},
  };
  ExpectRefused(2, kRows);
}

// The arm reaches 0.2786 m out along x from the start of the lines.
TEST_F(Refusal, OfWhatTheArmCannotDoSaysWhereAndWhy) {
  constexpr Row kRows[] = {
      {"ik", "--pose 2 0 0.5 1 0 0 0", "no solution at 2 0 0.5 m (orientation 1 0 0 0): out of reach, the solver finds no joints for it"},
      {"ik", "--pose 0.45 0.1 0.5 0 0 1 0 --near 0 0.3 0.2 0 1 0 --step-bound 0.2", "no solution at 0.45 0.1 0.5 m (orientation 0 0 1 0): none of its solutions is admissible; the nearest: joint 1 moves 0.218669 rad, 0.0186689 rad over the step bound of 0.2 rad"},
      {"jog", "--joints 0 0 0 0 1 0 --axis x --step 1", "no solution for 1 m along x of the base frame from 0.473224 0 0.747682 m (orientation 0.28154 0 0.95955 0): out of reach, the solver finds no joints for it"},
      {"line", FROM "--by 0.5 0 0", "55.67 % along the line: out of reach, the solver finds no joints for it; before it joints 0 1.27..."},
      {"line", FROM "--to 0.1 0.3 0.2 2.5 -1 -2.5", "the line arrives with other joints than --to has: joint..."},
      {"line", FROM "--by 0.5 0 0 --profile ramp --speed 20", "no solution at point 706, 0.2786 m (55.7 %) along the line, at 0.802728 0 0.530869 m (orientation 0.0353908 0 0.999374 0): out of reach, the solver finds no joints for it"},
      {"line", FROM "--by 0.01 0 0 --profile s-curve --acc 1 --jerk 10 --motor-rpm 3", "at 0.524134..."},
      {"line", FROM "--by 0 0 .1 --profile fixed --precision 1e-5", "50000000 points, at most 1000000 are planned"},
      {"ik", FOREIGN, "no solution at 0.1 0.2 0.3 m (orientation 1 0 0 0): the solver throws an exception (no way); ikcheck..."},
      {"joint", FROM "--to-pose 2 0 0", "no solution at the end, 2 0 0 m (orientation 0.0353908 0 0.999374 0)..."},
  };
  ::setenv("QAL_FOREIGN_FAULT", "throws", 1);
  ExpectRefused(1, kRows);
  ::unsetenv("QAL_FOREIGN_FAULT");
}
// clang-format on

TEST_F(Refusal, OfASolverKeepsWhatItPrintsOutOfTheData) {
  const ToolRun run = Shell("QAL_FOREIGN_FAULT=prints " QAL_BINARY " ik" FOREIGN);
  EXPECT_EQ(0, run.status) << run.err;
  EXPECT_EQ(0, run.out.find("{\n  \"arm\"")) << run.out;
  EXPECT_NE(std::string::npos, run.err.find("solver by stream\n"));
}

// However it does, and whatever exit status it picks.
TEST_F(Refusal, OfASolverThatEndsTheProcessIsOneLine) {
  const std::string ik = QAL_BINARY " ik" FOREIGN;
  const struct {
    const char* fault;
    const char* how;  // a sanitizer turns signals into exit statuses
  } rows[] = {
      {"crash", ""}, {"exit", "status 3)"}, {"exit 0", "status 0)"}, {"exit at load", "status 0)"}};
  for (const auto& [fault, how] : rows) {
    const ToolRun run = Shell("QAL_FOREIGN_FAULT='" + std::string(fault) + "' " + ik);
    const std::string expected =
        "qal ik: " QAL_FOREIGN_SOLVER_DIR "/libik.so: the solver ended the process (";
    EXPECT_EQ(1, run.status);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(0, run.LastLine().find(expected + how)) << run.err;
  }
  // A stop reaches the solver as well: else the pipe would never end.
  EXPECT_EQ(143, Shell("bash -o pipefail -c \"QAL_FOREIGN_FAULT=hang timeout --foreground "
                       "--preserve-status 0.5 " +
                       ik + " | cat\"")
                     .status);
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
  for (const std::string command :
       {"fk", "ik", "jog", "line", "joint", "convert", "verify", "report", "plot"}) {
    const ToolRun help = Qal("help " + command);
    EXPECT_EQ(help.out, Qal(command + " --help").out);
    EXPECT_EQ(0, help.status);
    EXPECT_NE(std::string::npos, help.out.find("Example: qal " + command));
    EXPECT_EQ("", help.err);
  }
}

}  // namespace
