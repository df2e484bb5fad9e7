#include <gtest/gtest.h>

#include "../../tools/ikcheck/report.h"
#include "../support/tool_run.h"

namespace {

using namespace qal::ikcheck;
using IkcheckCommand = InOwnFolder;

ToolRun Ikcheck(const std::string& arguments, const std::string& fault = "none") {
  return Shell("FAULT='" + fault + "' " QAL_IKCHECK " " + arguments);
}

const std::string kFaulty = QAL_FAULTY_SOLVER " --poses 300 ";

TEST_F(IkcheckCommand, TellsByItsExitStatusWhatItFound) {
  EXPECT_EQ(Ikcheck(QAL_SOUND_SOLVER " --strict").status, 0);
  EXPECT_EQ(Ikcheck(kFaulty, "minus pi").status, 0);
  EXPECT_EQ(Ikcheck(kFaulty + "--strict", "minus pi").status, 1);
  EXPECT_EQ(Ikcheck(kFaulty, "true").status, 1);
}

TEST_F(IkcheckCommand, PrintsJson) {
  const Json report = Json::parse(Ikcheck(kFaulty + "--json --seed 7", "true").out);
  EXPECT_EQ(report["library"], QAL_FAULTY_SOLVER);
  EXPECT_FALSE(report["sound"]);
  EXPECT_EQ(report["findings"][0]["name"], "true-without-solution");
  EXPECT_EQ(report["findings"][0]["severity"], "fault");
  EXPECT_EQ(report["interface"]["joints"], 6);
  EXPECT_EQ(report["interface"]["solution_layout"], "six entries of 24 bytes");
  EXPECT_EQ(report["checks"][1]["check"], "random joints");
  EXPECT_EQ(report["checks"][1]["solved"], 300);
  // A library's own words may be no text at all.
  const Json printed = Json::parse(Ikcheck(kFaulty + "--json", "print at load").out);
  EXPECT_EQ(printed["findings"][0]["case"]["words"],
            "when loaded and queried: wrote \"\uFFFDhello\n\"");
}

TEST_F(IkcheckCommand, ComparesWithAnArmsDescription) {
  const std::string sound = QAL_SOUND_SOLVER " --poses 300 --json ";
  EXPECT_EQ(Ikcheck(sound + "--urdf " QAL_ARMS_DIR "/reference.urdf").status, 0);
  const ToolRun other = Ikcheck(sound + "--table " QAL_ARMS_DIR "/carrying_parallel.toml");
  EXPECT_EQ(other.status, 1);
  EXPECT_EQ(Json::parse(other.out)["findings"][0]["name"], "other-arm");
  // Its flange, 0.08 m before the tool's frame and turned, is joint 6's link.
  const ToolRun tip = Ikcheck(sound + "--tip link_6 --urdf " QAL_ARMS_DIR "/reference.urdf");
  EXPECT_EQ(tip.status, 1);
  const std::string words = Json::parse(tip.out)["findings"][0]["case"]["words"];
  EXPECT_NE(words.find("only the tool frame differs"), std::string::npos) << words;
}

TEST_F(IkcheckCommand, SaysInOneLineWhatItCannotUse) {
  std::ofstream("text") << "no library";
  const std::string missing = QAL_LIBRARIES "/libwants_missing.so";
  const std::pair<std::string, std::string> kRefused[] = {
      {"", "library is required"},
      {"nowhere.so", "cannot read nowhere.so: No such file or directory"},
      {"text", "text: not a shared library (no ELF file)"},
      {missing, "cannot load " + missing + ": undefined symbol: _Z14NowhereDefinedv"},
      {kFaulty + "--poses 0", "--poses: Value 0 not in range 1 to 10000000"},
      {kFaulty + "--seed x", "Could not convert: --seed = x"},
  };
  for (const auto& [arguments, message] : kRefused) {
    const ToolRun run = Ikcheck(arguments);
    EXPECT_EQ(run.status, 2) << arguments;
    EXPECT_EQ(run.out + run.err, "ikcheck: " + message + '\n');
  }
}

TEST_F(IkcheckCommand, ExplainsEveryFinding) {
  const ToolRun help = Ikcheck("--help");
  EXPECT_EQ(help.status, 0);
  for (size_t i = 0; i < kFindingCount; ++i) {
    const FindingKind& kind = KindOf(static_cast<Finding>(i));
    const std::string line = std::string(kind.name) + ": " + kind.expected + '\n';
    EXPECT_NE(help.out.find(line), std::string::npos) << line;
  }
}

}  // namespace
