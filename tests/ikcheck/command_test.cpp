#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "../../tools/ikcheck/report.h"

namespace {

using namespace qal::ikcheck;

struct Outcome {
  int status;
  std::string output;  // standard output, and standard error where the arguments say so
};

Outcome Ikcheck(const std::string& arguments, const char* fault = "none") {
  ::setenv("FAULT", fault, 1);
  Outcome run = {};
  std::FILE* pipe = ::popen((QAL_IKCHECK " " + arguments).c_str(), "r");
  for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) run.output += static_cast<char>(c);
  run.status = WEXITSTATUS(::pclose(pipe));
  return run;
}

const std::string kFaulty = std::string(QAL_FAULTY_SOLVER) + " --poses 300 ";

TEST(IkcheckCommand, TellsByItsExitStatusWhatItFound) {
  EXPECT_EQ(Ikcheck(std::string(QAL_SOUND_SOLVER) + " --strict").status, 0);
  EXPECT_EQ(Ikcheck(kFaulty, "minus pi").status, 0);
  EXPECT_EQ(Ikcheck(kFaulty + "--strict", "minus pi").status, 1);
  EXPECT_EQ(Ikcheck(kFaulty, "true").status, 1);
}

TEST(IkcheckCommand, PrintsJson) {
  const Outcome run = Ikcheck(kFaulty + "--json --seed 7", "true");
  const Json report = Json::parse(run.output);
  EXPECT_EQ(report["library"], QAL_FAULTY_SOLVER);
  EXPECT_FALSE(report["sound"]);
  EXPECT_EQ(report["findings"][0]["name"], "true-without-solution");
  EXPECT_EQ(report["findings"][0]["severity"], "fault");
  EXPECT_EQ(report["interface"]["joints"], 6);
  EXPECT_EQ(report["interface"]["solution_layout"], "six entries of 24 bytes");
  EXPECT_EQ(report["checks"][1]["check"], "random joints");
  EXPECT_EQ(report["checks"][1]["solved"], 300);
  // A library's own words may be no text at all.
  const Json printed = Json::parse(Ikcheck(kFaulty + "--json", "print at load").output);
  EXPECT_EQ(printed["findings"][0]["case"]["words"],
            "when loaded and queried: wrote \"\uFFFDhello\n\"");
}

TEST(IkcheckCommand, ComparesWithAnArmsDescription) {
  const std::string sound = QAL_SOUND_SOLVER " --poses 300 --json ";
  EXPECT_EQ(Ikcheck(sound + "--urdf " QAL_ARMS_DIR "/reference.urdf").status, 0);
  const Outcome other = Ikcheck(sound + "--table " QAL_ARMS_DIR "/carrying_parallel.toml");
  EXPECT_EQ(other.status, 1);
  EXPECT_EQ(Json::parse(other.output)["findings"][0]["name"], "other-arm");
  // Its flange, 0.08 m before the tool's frame and turned, is joint 6's link.
  const Outcome tip = Ikcheck(sound + "--tip link_6 --urdf " QAL_ARMS_DIR "/reference.urdf");
  EXPECT_EQ(tip.status, 1);
  const std::string words = Json::parse(tip.output)["findings"][0]["case"]["words"];
  EXPECT_NE(words.find("only the tool frame differs"), std::string::npos) << words;
}

TEST(IkcheckCommand, SaysInOneLineWhatItCannotUse) {
  const std::string text = testing::TempDir() + "/ikcheck_command_test.txt";
  std::ofstream(text) << "no library";
  const std::pair<std::string, std::string> kRefused[] = {
      {"", "library is required"},
      {"nowhere.so", "cannot read nowhere.so: No such file or directory"},
      {text, text + ": not a shared library (no ELF file)"},
      {std::string(QAL_LIBRARIES) + "/libwants_missing.so",
       std::string("cannot load ") + QAL_LIBRARIES +
           "/libwants_missing.so: undefined symbol: _Z14NowhereDefinedv"},
      {kFaulty + "--poses 0", "--poses: Value 0 not in range 1 to 10000000"},
      {kFaulty + "--seed x", "Could not convert: --seed = x"},
  };
  for (const auto& [arguments, message] : kRefused) {
    const Outcome run = Ikcheck(arguments + " 2>&1");
    EXPECT_EQ(run.status, 2) << arguments;
    EXPECT_EQ(run.output, "ikcheck: " + message + '\n');
  }
}

TEST(IkcheckCommand, ExplainsEveryFinding) {
  const Outcome run = Ikcheck("--help");
  EXPECT_EQ(run.status, 0);
  for (size_t i = 0; i < kFindingCount; ++i) {
    const FindingKind& kind = KindOf(static_cast<Finding>(i));
    const std::string line = std::string(kind.name) + ": " + kind.expected + '\n';
    EXPECT_NE(run.output.find(line), std::string::npos) << line;
  }
}

}  // namespace
