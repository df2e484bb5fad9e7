#include <gtest/gtest.h>

#include <cstring>

#include "../support/tool_run.h"

namespace {

const std::string kMkik = QAL_MKIK " ";
const std::string kArm = QAL_ARMS_DIR "/bench_parallel.urdf";

// In a folder with a compiler of the test's own and one for scratch, which has to be empty at the
// end.
class Build : public InOwnFolder {
 protected:
  Build() { std::filesystem::create_directory("a,b c"); }
  ~Build() override { EXPECT_TRUE(std::filesystem::is_empty("a,b c")); }

  /// Builds libik.so by a script, in which $out is what is to be made.
  static ToolRun By(const std::string& script) {
    std::ofstream("compiler") << "#!/bin/sh\nfor out; do :; done\n" << script << '\n';
    return Shell("chmod +x compiler; echo input | TMPDIR='a,b c' CXX=./compiler " + kMkik + kArm +
                 " -o libik.so");
  }
};

TEST_F(Build, KeepsAGoodFileFromWhatIsNoSolver) {
  std::ofstream("good.cpp") << "int main() {}";
  std::ofstream("exits.cpp") << "#include <cstdlib>\nstatic int now = (std::_Exit(0), 0);";
  std::ofstream("libik.so") << "good";
  const struct {
    const char* script;
    const char* why;
  } rows[] = {
      {"true", "made no solver that works here (cannot be loaded as a solver library: "},
      {": > \"$out\"",
       "/libik.so: file too short); for another machine, --source writes the source to "
       "build there\n"},
      {"g++ good.cpp -o \"$out\"", "(cannot be loaded"},
      {"g++ -shared -fPIC good.cpp -o \"$out\"", "(no solver library: it has no function"},
      {"g++ -shared -fPIC exits.cpp -o \"$out\"", "(its process: status 0)"},
      {"cp " QAL_OTHER_SOLVER " \"$out\"", "are not among the solutions of their pose)"},
      {"kill -SEGV $$", "failed (signal 11, Segmentation fault)"},
      {"exec " QAL_AARCH64_CXX " \"$@\"", "made no solver that works here"},
  };
  for (const auto& [script, why] : rows) {
    if (std::strstr(script, "-NOTFOUND") != nullptr) continue;
    const ToolRun run = By(script);
    EXPECT_EQ(run.status, 1) << script;
    EXPECT_EQ(run.err.find("mkik: the compiler './compiler' "), 0u) << run.err;
    EXPECT_NE(run.err.find(why), std::string::npos) << run.err;
    EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(FileContent("libik.so"), "good");
  }
}

TEST_F(Build, GivesTheCompilerNoInputAndNoneOfItsOutput) {
  const ToolRun run = By("cat; echo words; exec c++ \"$@\"");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "words\n");
  EXPECT_EQ(run.out.find("bench_parallel from "), 0u) << run.out;
}

TEST_F(Build, NeverWritesOverWhatItReads) {
  (void)Shell("cp " + kArm +
              " arm.urdf; ln arm.urdf hard; ln -s arm.urdf soft; "
              "echo \"description = 'soft'\" > cell.toml");
  for (const char* arguments :
       {"arm.urdf -o arm.urdf", "arm.urdf -o a,b\\ c/../soft", "soft --source hard",
        "cell.toml -o arm.urdf", "cell.toml --source ./cell.toml", "- -o arm.urdf < hard"}) {
    const ToolRun run = Shell(kMkik + arguments);
    EXPECT_EQ(run.status, 2) << arguments;
    EXPECT_NE(run.err.find(": the arm's description itself; another file is expected"),
              std::string::npos)
        << run.err;
    EXPECT_EQ(FileContent("arm.urdf"), FileContent(kArm));
  }
}

}  // namespace
