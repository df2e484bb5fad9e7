#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "../support/tool_run.h"

namespace {

using Mkik = InOwnFolder;

const std::string kMkik = QAL_MKIK " ";
const std::string kArms = QAL_ARMS_DIR "/";

TEST_F(Mkik, BuildsALibraryThatExportsTheEntryPointsAlone) {
  const ToolRun built = Shell(kMkik + kArms + "service_parallel.urdf -o libik.so");
  ASSERT_EQ(built.status, 0) << built.err;
  EXPECT_EQ(Files(), "libik.so\n");
  EXPECT_EQ(Shell("nm -D --defined-only libik.so | cut -d' ' -f3- | LC_ALL=C sort").out,
            "_ZN6ikfast12GetNumJointsEv\n_ZN6ikfast13GetIkRealSizeEv\n"
            "_ZN6ikfast16GetIkFastVersionEv\n_ZN6ikfast17GetFreeParametersEv\n"
            "_ZN6ikfast17GetKinematicsHashEv\n_ZN6ikfast20GetNumFreeParametersEv\n"
            "_ZN6ikfast9ComputeFkEPKdPdS2_\n"
            "_ZN6ikfast9ComputeIkEPKdS1_S1_RNS_18IkSolutionListBaseIdEE\n"
            "_ZN6ikfast9GetIkTypeEv\nqal_array_solver_1\n");
}

// It needs no header and no library of ours, and no warning can be turned on that it gives. Left to
// themselves, compilers round a product and its sum once on aarch64, and where a processor with FMA
// is named; g++ 12 the offset wrist's there, whatever it is told.
TEST_F(Mkik, WritesASourceThatKeepsItsBitsWhereverItIsCompiled) {
  const std::string solve = " -I . " QAL_SOLVER_BITS " -o solve && ";
  for (const char* arguments :
       {"calibrated_parallel.toml -o solver.cpp", "laboratory_offset.urdf --source solver.cpp",
        "painting_oblique.toml -o solver.cpp"}) {
    EXPECT_EQ(Shell(kMkik + kArms + arguments).err, "");
    const ToolRun plain =
        Shell("c++ -std=c++17 -Wall -Wextra -Wconversion -Wshadow -Werror -O2 -ffp-contract=off" +
              solve + "./solve");
    ASSERT_GT(plain.out.size(), 200 * 12 * 20u) << plain.err;
    for (const std::string& other :
         {"c++ -std=gnu++17 -O2 -march=native" + solve + "./solve",
          QAL_AARCH64_CXX " -std=c++17 -O2 -static" + solve + QAL_AARCH64_EMULATOR " ./solve"}) {
      if (other.find("-NOTFOUND") != std::string::npos) continue;
      const ToolRun run = Shell(other);
      EXPECT_TRUE(run.out == plain.out) << other << '\n' << run.err;
    }
  }
}

// By its position, by --arm, by QAL_ARM and by standard input; each goes before those behind it.
// The solver that an arm file names is not looked for: it is what is to be made.
TEST_F(Mkik, SaysWhatItFoundInTheArmThatItIsGiven) {
  const std::string arm = kArms + "reference.urdf";
  std::ofstream("cell.toml") << "description = '" + arm + "'\nname = 'cell'\nsolver = 'none.so'\n";
  for (const std::string& command :
       {"QAL_ARM=none " + kMkik + "--arm none " + arm, "QAL_ARM=none " + kMkik + "--arm " + arm,
        "QAL_ARM=" + arm + ' ' + kMkik, kMkik + "- < " + arm, kMkik + "cell.toml"}) {
    const ToolRun run = Shell(command);
    EXPECT_NE(run.out.find(", spherical wrist, hash qal-"), std::string::npos)
        << command << run.err;
  }
  EXPECT_EQ(Shell(kMkik + "--version --arm cell.toml").out.find("mkik 1.0.0\narm: cell from cell"),
            0u);
  const auto found = nlohmann::json::parse(Shell(kMkik + "cell.toml --json").out);
  EXPECT_EQ(found["arm"]["file"], "cell.toml");
  EXPECT_EQ(found["arm"]["solver"], nullptr);
  EXPECT_EQ(found["lengths_m"]["upper_arm"], 0.4);
  EXPECT_EQ(found["joints"][2]["upper_rad"], 2.967059678);
  EXPECT_LT(found["check"]["solutions"], 1e-12);
  EXPECT_EQ(Files(), "cell.toml\n");
}

TEST_F(Mkik, ShowsNamesWithoutWhatWouldMoveTheCursor) {
  const ToolRun run =
      Shell("sed -e 's/J2/axis\\\\n\\\\u001b[2J/; s/J3/" + std::string(300, 'x') + "/' " + kArms +
            "carrying_parallel.toml > arm.toml; " + kMkik + "arm.toml");
  EXPECT_NE(run.out.find("\n  axis  [2J  "), std::string::npos) << run.out << run.err;
  EXPECT_EQ(run.out.find(std::string(100, 'x')), std::string::npos);
}

TEST_F(Mkik, TellsItsFailuresInOneLineAndLeavesNothing) {
  std::ofstream("skew.urdf") << "<robot name='x'><link name='a&#27;&#10;b'/></robot>";
  const std::string reference = kArms + "reference.urdf";
  const struct {
    std::string command;
    int status;
    std::string message;
  } cases[] = {
      {kMkik, 2, "no arm; its description is expected as ARM, by --arm or in QAL_ARM"},
      {kMkik + "skew.urdf", 2, "skew.urdf: no joints behind 'a  b'"},  // an escape, a line end
      {kMkik + reference + " --deg", 2, "--deg is for tables; a URDF's angles are radians"},
      {kMkik + reference + " --mm", 2,
       reference + ": the arm is 0.001247 m long; 0.05 to 20 m are expected (without --mm lengths "
                   "are metres)"},
      {kMkik + kArms + "carrying_parallel.toml --tip tool1", 2,
       "--base and --tip are for URDFs; a table has no links"},
      {"TMPDIR=/nowhere " + kMkik + reference + " -o libik.so", 2,
       "cannot write in /nowhere: No such file or directory; TMPDIR has to name a folder to "
       "compile in"},
      {"TMPDIR=skew.urdf " + kMkik + reference + " -o libik.so", 2,
       "cannot write in skew.urdf: Not a directory; TMPDIR has to name a folder to compile in"},
      {kMkik + reference + " -o new.cpp --source ./new.cpp", 2,
       "new.cpp: -o and --source expect two files"},
      {"CXX=no-compiler " + kMkik + reference + " -o libik.so", 1,
       "cannot run the compiler 'no-compiler': No such file or directory; set CXX, or build the "
       "source that --source writes where a compiler is"},
      {"CXX=false " + kMkik + reference + " -o libik.so", 1,
       "the compiler 'false' failed (status 1)"},
  };
  for (const auto& [command, status, message] : cases) {
    const ToolRun run = Shell(command);
    EXPECT_EQ(run.status, status);
    EXPECT_EQ(run.err, "mkik: " + message + "\n");
    EXPECT_EQ(run.out, "");
  }
  EXPECT_EQ(Files(), "skew.urdf\n");
}

}  // namespace
