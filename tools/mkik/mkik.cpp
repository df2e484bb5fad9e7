#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <optional>

#include "../../io/error.h"
#include "../../io/files.h"
#include "../../io/loaded_arm.h"
#include "../common/arm_option.h"
#include "../common/read_options.h"
#include "../common/run.h"
#include "../common/values.h"
#include "build.h"
#include "source.h"
#include "summary.h"
#include "verify.h"

namespace {

using namespace qal::tools;
using namespace qal::io;

struct Arguments {
  std::optional<std::string> positional;
  std::optional<std::string> arm;
  std::string output;
  std::string source;
  bool nominal = false;
  bool json = false;
  ReadOptions read;
};

std::optional<ArmFile> FileOf(const Arguments& arguments) {
  return ResolveArmFile(arguments.positional ? arguments.positional : arguments.arm,
                        ArmOfEnvironment(), arguments.read);
}

qal::Geometry GeometryOf(const Arguments& arguments) {
  return arguments.nominal ? qal::Geometry::kNominal : qal::Geometry::kDescribed;
}

// The arm with its closed form: a solver that its file names is what is to be made.
LoadedArm ClosedFormArm(ArmFile file, const Arguments& arguments) {
  file.solver.clear();
  return MakeArm(file, GeometryOf(arguments));
}

// What is written must not take the place of what was read, nor of what else is written.
void RefuseToOverwrite(const Arguments& arguments, const ArmFile& file) {
  for (const std::string& written : {arguments.output, arguments.source}) {
    for (const std::string& read : file.sources) {
      if (written.empty() || !SameFile(written, read)) continue;
      throw UsageError(
          fmt::format("{}: the arm's description itself; another file is expected for "
                      "what is written",
                      written));
    }
  }
  if (!arguments.output.empty() && !arguments.source.empty() &&
      SameFile(arguments.output, arguments.source)) {
    throw UsageError(fmt::format("{}: -o and --source expect two files", arguments.output));
  }
}

void Run(const Arguments& arguments) {
  const std::optional<ArmFile> file = FileOf(arguments);
  if (!file) {
    throw UsageError("no arm; its description is expected as ARM, by --arm or in QAL_ARM");
  }
  RefuseToOverwrite(arguments, *file);
  const qal::ArmDescription description = DescriptionIn(*file);
  const LoadedArm arm = ClosedFormArm(*file, arguments);
  const qal::FittedModel fitted = *MakeModel(description, GeometryOf(arguments));
  Verification verification;
  try {
    verification = Verify(description, fitted);
  } catch (const Failure& failure) {
    throw Failure(fmt::format("{}: {}", file->name, failure.what()));
  }
  const std::string source = SolverSource(description, fitted);
  if (!arguments.source.empty()) WriteFile(arguments.source, source);
  if (std::filesystem::path(arguments.output).extension() == ".cpp") {
    WriteFile(arguments.output, source);
  } else if (!arguments.output.empty()) {
    BuildLibrary(source, SolverExports(), arm.arm.solver(), arguments.output);
  }
  WriteStandardOutput(arguments.json ? SummaryJson(arm, description, fitted, verification)
                                     : SummaryText(arm, description, fitted, verification));
}

std::string Version(const Arguments& arguments) {
  const std::optional<ArmFile> file = FileOf(arguments);
  return fmt::format("mkik {}\narm: {}\ncompiler: {}", QAL_VERSION,
                     file ? ArmHeading(ClosedFormArm(*file, arguments)) : "none named",
                     fmt::join(CompilerCommand(), " "));
}

void Describe(CLI::App& app, Arguments& arguments) {
  app.description("Makes a solver library, libik.so, of an arm's description.");
  app.footer(
      "What a file is shows in its content, whatever its name.\n"
      "Exit status: 0 done, 1 the arm can't be solved, or no compiler works, 2 bad usage.\n"
      "Environment: CXX, the compiler (default: c++); TMPDIR, where it works (default: /tmp).\n"
      "Example: mkik arm.urdf -o libik.so && ikcheck libik.so --arm arm.urdf");
  TakesArm(app.add_option("ARM", arguments.positional, "the same as --arm, and goes before it"));
  TakesArm(app.add_option(
      "--arm", arguments.arm,
      "description: URDF, table of parameters (TOML, JSON) or arm file; -: standard\n"
      "input (default: QAL_ARM in the environment)"));
  TakesFile(app.add_option("-o,--output", arguments.output,
                           "solver library to build, or its source when the name ends in .cpp;\n"
                           "without it the arm is only examined"),
            "*.so *.cpp");
  TakesFile(app.add_option("--source", arguments.source, "also write the solver as one C++ file"),
            "*.cpp");
  app.add_flag("--nominal", arguments.nominal,
               "make the nearest member of the arm's family, not the arm as it is described");
  AddReadOptions(app, arguments.read);
  app.add_flag("--json", arguments.json, "JSON instead of the table");
  app.set_version_flag(
      "--version", [&] { return Version(arguments); },
      "the version, and the arm and the compiler that would be used");
  app.callback([&] { Run(arguments); });
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): only for lack of memory, without a message
int main(int argc, char** argv) {
  KeepStandardOutputForData();
  Arguments arguments;
  return RunTool("mkik", ArgumentsOf(argc, argv), [&](CLI::App& app) { Describe(app, arguments); });
}
