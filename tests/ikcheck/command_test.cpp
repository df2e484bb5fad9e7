#include <gtest/gtest.h>

#include "../../tools/ikcheck/report.h"
#include "../support/tool_run.h"

namespace {

using namespace qal::ikcheck;
using IkcheckCommand = InOwnFolder;

ToolRun Ikcheck(const std::string& arguments, const std::string& fault = "none") {
  return Shell("QAL_FOREIGN_FAULT='" + fault + "' " QAL_IKCHECK " " + arguments);
}

const std::string kFaulty = QAL_FAULTY_SOLVER " --poses 300 ";

TEST_F(IkcheckCommand, TellsByItsExitStatusWhatItFound) {
  EXPECT_EQ(Ikcheck(QAL_SOUND_SOLVER " --poses 300 --strict").status, 0);
  EXPECT_EQ(Ikcheck(kFaulty, "minus pi").status, 0);
  EXPECT_EQ(Ikcheck(kFaulty + "--strict", "minus pi").status, 1);
  const ToolRun faulty = Ikcheck(kFaulty, "true");
  EXPECT_EQ(faulty.status, 1);
  EXPECT_EQ(faulty.err, "ikcheck: " QAL_FAULTY_SOLVER ": faults: true-without-solution\n");
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

// The reference arm with its base or its tool elsewhere, with another link, or another arm.
TEST_F(IkcheckCommand, ComparesWithAnArmsDescription) {
  const std::string none = "none";
  const std::string base = "only the base frame differs: the solver's is at xyz=";
  const std::string tool = "only the tool frame differs: the solver's is at xyz=";
  const struct {
    const char* change;  // of reference.urdf, which becomes arm.urdf
    const char* options;
    std::string reason;
  } cases[] = {
      {"", "--arm arm.urdf", none},
      {"s/0.050 0 0.380/0.050 0 0.380001/", "--urdf arm.urdf", none},
      {"0,/0 0 0/s//0 0 0.1/", "--urdf arm.urdf", base + "\"0 0 0.1\" rpy=\"0 0 0\""},
      {"s/0 1.5707963267948966 0/0 0 0/", "--urdf arm.urdf",
       tool + "\"0 0 0\" rpy=\"0 1.570796 0\""},
      {"", "--tip link_6 --urdf arm.urdf", tool + "\"0.08 0 0\" rpy=\"0 1.570796 0\""},
      {"s/0 0 0.400/0 0 0.5/", "--urdf arm.urdf", "position off by 0.1 m, orientation by "},
      {"", "--table " QAL_ARMS_DIR "/carrying_parallel.toml", "position off by 1.25"},
  };
  for (const auto& [change, options, reason] : cases) {
    std::ofstream("arm.urdf")
        << Shell("sed '" + std::string(change) + "' " QAL_ARMS_DIR "/reference.urdf").out;
    const ToolRun run = Ikcheck(QAL_SOUND_SOLVER " --poses 1 --json " + std::string(options));
    const Json findings = Json::parse(run.out)["findings"];
    EXPECT_EQ(run.status, reason == none ? 0 : 1) << change;
    std::string words = none;
    if (!findings.empty()) {
      EXPECT_EQ(findings[0]["name"], "other-arm");
      words = findings[0]["case"]["words"];
    }
    const size_t semicolon = words.find(';');
    if (semicolon != std::string::npos) words.erase(0, semicolon + 2);
    EXPECT_EQ(words.substr(0, reason.size()), reason) << words;
  }
}

// The library alone; an arm file's, with its description; QAL_ARM, which goes after both others.
TEST_F(IkcheckCommand, TakesTheLibraryAndTheArmFromAFileOfAnArm) {
  std::ofstream("cell.toml") << "name = 'cell'\nsolver = '" QAL_SOUND_SOLVER
                                "'\n"
                                "description = '" QAL_ARMS_DIR "/reference.urdf'\n";
  const struct {
    std::string environment;
    std::string arguments;
    const char* library;
    Json arm;  // its name
  } cases[] = {
      {"", "--arm " QAL_SOUND_SOLVER, QAL_SOUND_SOLVER, nullptr},
      {"", "--arm cell.toml", QAL_SOUND_SOLVER, "cell"},
      {"cell.toml", "", QAL_SOUND_SOLVER, "cell"},
      {"cell.toml", QAL_FAULTY_SOLVER, QAL_FAULTY_SOLVER, "cell"},
      {QAL_SOUND_SOLVER, QAL_FAULTY_SOLVER, QAL_FAULTY_SOLVER, nullptr},
  };
  for (const auto& [environment, arguments, library, arm] : cases) {
    const ToolRun run =
        Shell("QAL_ARM=" + environment + ' ' + QAL_IKCHECK " --poses 10 --json " + arguments);
    const Json report = Json::parse(run.out, nullptr, false);
    EXPECT_EQ(report["library"], library) << arguments << run.err;
    EXPECT_EQ(report["arm"].is_null() ? Json() : report["arm"]["name"], arm) << arguments;
  }
}

// A lock is held as long as any process has its file open, among them one that a solver has started
// and moved to a session of its own.
TEST_F(IkcheckCommand, StopsWithNothingLeftBehind) {
  const ToolRun run = Shell(
      "{ QAL_FOREIGN_FAULT='hang, deaf' timeout --preserve-status -s INT 1 " QAL_IKCHECK
      " --timeout 30 " QAL_FAULTY_SOLVER "; echo $?; flock 9; } 9>lock; flock -n lock echo free");
  EXPECT_EQ(run.out, "130\nfree\n") << run.err;
}

TEST_F(IkcheckCommand, ShowsProgressOnATerminal) {
  const std::string shown =
      Shell("script -qec '" QAL_IKCHECK " --poses 10 " QAL_SOUND_SOLVER " >report' /dev/null").out;
  EXPECT_EQ(shown.rfind("\r\033[Kikcheck: check 1 of 17, interface", 0), 0u) << shown;
  EXPECT_EQ(shown.substr(shown.rfind('\r')), "\r\033[K");
  EXPECT_EQ(FileContent("report").rfind("ikcheck " QAL_SOUND_SOLVER "\n", 0), 0u);
}

TEST_F(IkcheckCommand, SaysInOneLineWhatItCannotUse) {
  const std::string missing = QAL_LIBRARIES "/libwants_missing.so";
  const std::pair<std::string, std::string> kRefused[] = {
      {"", "no library; one is expected as LIBRARY, by --arm or in QAL_ARM"},
      {"--arm " QAL_ARMS_DIR "/reference.urdf",
       QAL_ARMS_DIR "/reference.urdf: no solver in this URDF; the library to check is expected, "
                    "as in: ikcheck libik.so --arm " QAL_ARMS_DIR "/reference.urdf"},
      {kFaulty + "--arm " QAL_SOUND_SOLVER,
       QAL_SOUND_SOLVER ": a solver library without a description; a URDF or a table is expected"},
      {missing, "cannot load " + missing + ": undefined symbol: _Z14NowhereDefinedv"},
      {kFaulty + "--timeout nan",
       "--timeout: Value nan not in range 0.1 to 3600; ikcheck --help says how"},
      {kFaulty + "--poses 0",
       "--poses: Value 0 not in range 1 to 10000000; ikcheck --help says how"},
  };
  for (const auto& [arguments, message] : kRefused) {
    const ToolRun run = Ikcheck(arguments);
    EXPECT_EQ(run.status, 2) << arguments;
    EXPECT_EQ(run.out + run.err, "ikcheck: " + message + '\n');
  }
}

}  // namespace
