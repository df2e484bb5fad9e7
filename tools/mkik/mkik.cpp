#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>

#include "../arm/read_arm.h"
#include "../common/error.h"
#include "../common/files.h"
#include "build.h"
#include "family.h"
#include "source.h"
#include "summary.h"
#include "verify.h"

namespace {

using namespace qal::tools;

struct Arguments {
  std::string arm;
  std::string output;
  std::string source;
  bool json = false;
  ReadOptions read;
};

void Describe(CLI::App& app, Arguments& arguments) {
  app.add_option("ARM", arguments.arm, "URDF (.urdf, .xml) or table of parameters (.toml, .json)")
      ->required();
  app.add_option("-o,--output", arguments.output,
                 "solver library to build, or its source when the name ends in .cpp;\n"
                 "without it the arm is only examined")
      ->type_name("FILE");
  app.add_option("--source", arguments.source, "also write the solver as one C++ file")
      ->type_name("FILE");
  app.add_option("--base", arguments.read.base, "base link (else the one without a parent)")
      ->type_name("LINK");
  app.add_option("--tip", arguments.read.tip, "tip link (else where six joints end)")
      ->type_name("LINK");
  app.add_flag("--mm", arguments.read.millimetres, "lengths are in millimetres, not metres");
  app.add_flag("--deg", arguments.read.degrees, "a table's angles are in degrees, not radians");
  app.add_flag("--exact-angles", arguments.read.exact_angles,
               "read angles such as 1.5708 as the multiples of 15 degrees that they stand for");
  app.add_flag("--json", arguments.json, "print what was found as JSON");
}

bool IsSource(const std::string& path) {
  const std::string suffix = ".cpp";
  return path.size() >= suffix.size() &&
         path.compare(path.size() - suffix.size(), suffix.size(), suffix) == 0;
}

void Run(const Arguments& arguments) {
  const Arm arm = ReadArm(arguments.arm, arguments.read);
  Model model;
  Verification verification;
  try {
    model = FindFamily(arm);
    verification = Verify(arm, model);
  } catch (const Failure& failure) {
    throw Failure(fmt::format("{}: {}", arguments.arm, failure.what()));
  }
  const std::string source = SolverSource(arm, model);
  if (!arguments.source.empty()) WriteFile(arguments.source, source);
  if (IsSource(arguments.output)) {
    WriteFile(arguments.output, source);
  } else if (!arguments.output.empty()) {
    BuildLibrary(source, SolverExports(), arguments.output);
  }
  const std::string summary = arguments.json ? SummaryJson(arm, model, verification).dump(2) + '\n'
                                             : SummaryText(arm, model, verification);
  WriteStandardOutput(summary);
}

int Main(int argc, char** argv) {
  KeepWriteSignalsAway();
  CLI::App app(
      "Makes a closed-form solver library, libik.so, of an arm's description.\n"
      "Exit status: 0 done; 1 the arm has no closed form here, or no compiler works; 2 bad usage.");
  Arguments arguments;
  Describe(app, arguments);
  try {
    app.parse(argc, argv);
    Run(arguments);
    return kDone;
  } catch (const CLI::Success& help) {
    return app.exit(help);
  } catch (const CLI::ParseError& error) {
    fmt::print(stderr, "mkik: {} (--help shows the usage)\n", error.what());
    return kBadUsage;
  } catch (const Failure& failure) {
    fmt::print(stderr, "mkik: {}\n", failure.what());
    return kFailed;
  } catch (const UsageError& error) {
    fmt::print(stderr, "mkik: {}\n", error.what());
    return kBadUsage;
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Main(argc, argv);
  } catch (const std::exception& error) {  // out of memory, for one
    std::fprintf(stderr, "mkik: %s\n", error.what());
    return qal::tools::kFailed;
  }
}
