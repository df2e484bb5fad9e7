#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <new>
#include <sstream>

#include "../../io/error.h"
#include "../../io/files.h"
#include "../../io/messages.h"
#include "arguments.h"
#include "commands.h"
#include "solver_check.h"

namespace {

using namespace qal::tools;
using namespace qal::io;

void Describe(CLI::App& app) {
  app.name("qal");
  app.description(
      "Kinematics and trajectories of a six-axis arm. Angles in rad and lengths in m unless --deg\n"
      "or --mm is given. Exit status: 0 done, 1 no solution or a violation, 2 bad usage.");
  app.footer("qal COMMAND --help describes a command, with an example.");
  app.set_version_flag("--version", "qal " QAL_VERSION);
  app.require_subcommand(0, 1);
  app.parse_complete_callback(CheckSolver);
  for (auto* add : {AddFk, AddIk, AddJog, AddLine, AddJoint, AddConvert, AddVerify}) add(app);
}

// Runs what the command line asks for.
void Run(CLI::App& app, int argc, char** argv) {
  std::vector<std::string> arguments;  // in reverse, as the parser wants them
  for (int i = argc - 1; i > 0; --i) arguments.push_back(ShieldNumber(argv[i]));
  try {
    app.parse(arguments);
  } catch (const CLI::ExtrasError&) {
    const std::string extra = app.remaining(true).front();
    if (app.get_subcommands().empty()) {
      throw UsageError(fmt::format("'{}' is no command; qal --help lists them", extra));
    }
    throw UsageError(fmt::format("'{}' was not expected; qal {} --help lists the options", extra,
                                 app.get_subcommands().front()->get_name()));
  } catch (const CLI::ParseError& error) {
    std::ostringstream text;
    if (app.exit(error, text, text) != 0) throw UsageError(error.what());
    WriteStandardOutput(text.str());
    return;
  }
  if (app.get_subcommands().empty()) {
    throw UsageError("a command is expected; qal --help lists them");
  }
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): only for lack of memory, without a message
int main(int argc, char** argv) {
  KeepWriteSignalsAway();
  CLI::App app;
  std::string who = "qal";
  const auto command = [&app, &who] {
    for (const CLI::App* sub : app.get_subcommands()) who += ' ' + sub->get_name();
    return who;
  };
  try {
    Describe(app);
    Run(app, argc, argv);
    return kDone;
  } catch (const UsageError& error) {
    SayOnError(command(), error.what());
    return kBadUsage;
  } catch (const Failure& error) {
    SayOnError(command(), error.what());
  } catch (const std::bad_alloc&) {
    SayOnError(command(), "out of memory");
  } catch (const std::exception& error) {
    SayOnError(command(),
               fmt::format("unexpected error: {} (solver: {})", error.what(), SolverPath()));
  } catch (...) {  // a solver may throw anything
    SayOnError(command(),
               fmt::format("unexpected error of an unknown kind (solver: {})", SolverPath()));
  }
  return kFailed;
}
