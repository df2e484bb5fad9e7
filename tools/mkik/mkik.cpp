#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <filesystem>
#include <sstream>

#include "../../io/arm_file.h"
#include "../../io/error.h"
#include "../../io/family_text.h"
#include "../../io/files.h"
#include "../../io/messages.h"
#include "../common/read_options.h"
#include "build.h"
#include "source.h"
#include "summary.h"
#include "verify.h"

namespace {

using namespace qal::tools;
using namespace qal::io;
using qal::ArmDescription;
using qal::Model;

struct Arguments {
  std::string arm;
  std::string output;
  std::string source;
  bool json = false;
  ReadOptions read;
};

void Describe(CLI::App& app, Arguments& arguments) {
  app.add_option(
         "ARM", arguments.arm,
         "description: URDF, table of parameters (TOML, JSON) or arm file; -: standard input")
      ->required();
  app.add_option("-o,--output", arguments.output,
                 "solver library to build, or its source when the name ends in .cpp;\n"
                 "without it the arm is only examined")
      ->type_name("FILE");
  app.add_option("--source", arguments.source, "also write the solver as one C++ file")
      ->type_name("FILE");
  AddReadOptions(app, arguments.read);
  app.add_flag("--json", arguments.json, "print what was found as JSON");
}

void Run(const Arguments& arguments) {
  const ArmDescription arm = ReadDescription(arguments.arm, arguments.read);
  const std::optional<Model> found = MakeModel(arm);
  if (!found) {
    throw Failure(fmt::format("{}: {}", arguments.arm, FamilyText(ExamineFamilies(arm))));
  }
  const Model& model = *found;
  Verification verification;
  try {
    verification = Verify(arm, model);
  } catch (const Failure& failure) {
    throw Failure(fmt::format("{}: {}", arguments.arm, failure.what()));
  }
  const std::string source = SolverSource(arm, model);
  if (!arguments.source.empty()) WriteFile(arguments.source, source);
  if (std::filesystem::path(arguments.output).extension() == ".cpp") {
    WriteFile(arguments.output, source);
  } else if (!arguments.output.empty()) {
    BuildLibrary(source, SolverExports(), arguments.output);
  }
  WriteStandardOutput(arguments.json ? SummaryJson(arm, model, verification)
                                     : SummaryText(arm, model, verification));
}

// Reads the command line, and does what it asks for. --help is an answer as well.
void Parse(int argc, char** argv) {
  CLI::App app(
      "Makes a closed-form solver library, libik.so, of an arm's description.\n"
      "Exit status: 0 done; 1 no closed form, or no compiler works; 2 bad usage.");
  Arguments arguments;
  Describe(app, arguments);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    std::ostringstream text;
    if (app.exit(error, text, text) != 0) {
      throw UsageError(fmt::format("{} (--help shows the usage)", error.what()));
    }
    WriteStandardOutput(text.str());
    return;
  }
  Run(arguments);
}

}  // namespace

int main(int argc, char** argv) {
  KeepWriteSignalsAway();
  try {
    Parse(argc, argv);
    return kDone;
  } catch (const UsageError& error) {
    SayOnError("mkik", error.what());
    return kBadUsage;
  } catch (const Failure& error) {
    SayOnError("mkik", error.what());
  } catch (const std::exception& error) {  // out of memory, for one
    SayOnError("mkik", fmt::format("unexpected error: {}", error.what()));
  }
  return kFailed;
}
