#include "run.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <charconv>
#include <exception>
#include <new>
#include <sstream>

#include "../../io/error.h"
#include "../../io/files.h"
#include "../../io/messages.h"
#include "child.h"
#include "complete.h"
#include "manual.h"

namespace qal::tools {

using namespace io;

namespace {

// Lets a negative number that starts with no digit ("-.5", "-inf") pass as a value, not an option.
std::string ShieldNumber(const std::string& argument) {
  if (argument.size() < 2 || argument[0] != '-' ||
      std::isdigit(static_cast<unsigned char>(argument[1])) != 0) {
    return argument;
  }
  double value = 0.0;
  const char* const begin = argument.data();
  return std::from_chars(begin, begin + argument.size(), value).ptr == begin ? argument
                                                                             : ' ' + argument;
}

// "TOOL", or "TOOL COMMAND" once a command has been read, and of one that has others the other.
std::string WhoOf(const CLI::App& app) {
  const std::vector<CLI::App*> commands = app.get_subcommands();
  return commands.empty() ? app.get_name() : app.get_name() + ' ' + WhoOf(*commands.front());
}

// The command of `app` that needs one of others, and none of them was read; null: there is no such.
const CLI::App* Unfinished(const CLI::App& app) {
  const std::vector<CLI::App*> commands = app.get_subcommands();
  if (!commands.empty()) return Unfinished(*commands.front());
  const bool has_others = !app.get_subcommands([](const CLI::App*) { return true; }).empty();
  return has_others && app.get_require_subcommand_max() > 0 ? &app : nullptr;
}

void Parse(CLI::App& app, const std::vector<std::string>& arguments) {
  try {
    app.parse(ForParser(arguments));
  } catch (const CLI::ExtrasError&) {
    const std::string extra = app.remaining(true).front();
    if (Unfinished(app) != nullptr) {
      throw UsageError(fmt::format("'{}' is no command; {} --help lists them", extra, WhoOf(app)));
    }
    throw UsageError(
        fmt::format("'{}' was not expected; {} --help lists the options", extra, WhoOf(app)));
  } catch (const CLI::ParseError& error) {
    std::ostringstream text;
    if (app.exit(error, text, text) != 0) {
      throw UsageError(fmt::format("{}; {} --help says how", OneLine(error.what()), WhoOf(app)));
    }
    WriteStandardOutput(text.str());
    return;
  }
  if (Unfinished(app) != nullptr) {
    throw UsageError(fmt::format("a command is expected; {} --help lists them", WhoOf(app)));
  }
}

// What shells and the build ask for, by a first argument that the help doesn't tell of. Whether it
// was that.
bool AnswerMachine(CLI::App& app, const std::vector<std::string>& arguments) {
  if (arguments.size() < 2) return false;
  if (arguments[0] == kCompleteOption) {
    WriteStandardOutput(Completions(app, {arguments.begin() + 1, arguments.end()}));
    return true;
  }
  if (arguments[0] != kManualOption) return false;
  for (const ManualPage& page : Manual(app)) {
    WriteFile(arguments[1] + '/' + page.name + ".1", page.text);
  }
  return true;
}

}  // namespace

std::vector<std::string> ForParser(const std::vector<std::string>& arguments) {
  std::vector<std::string> reversed(arguments.size());
  std::transform(arguments.rbegin(), arguments.rend(), reversed.begin(), ShieldNumber);
  return reversed;
}

int RunTool(const std::string& name, const std::vector<std::string>& arguments,
            const std::function<void(CLI::App&)>& describe) {
  KeepWriteSignalsAway();
  CLI::App app;
  app.name(name);
  app.set_help_flag("-h,--help", "this help");
  try {
    describe(app);
    if (!AnswerMachine(app, arguments)) Parse(app, arguments);
    return EndOfChild(kDone);
  } catch (const ChildStatus& child) {
    return child.status;
  } catch (const UsageError& error) {
    SayOnError(WhoOf(app), error.what());
    return EndOfChild(kBadUsage);
  } catch (const Failure& error) {
    SayOnError(WhoOf(app), error.what());
  } catch (const std::bad_alloc&) {
    SayOnError(WhoOf(app), "out of memory");
  } catch (const std::exception& error) {
    SayOnError(WhoOf(app), fmt::format("unexpected error: {}", error.what()));
  } catch (...) {  // a solver library may throw anything
    SayOnError(WhoOf(app), "unexpected error of an unknown kind");
  }
  return EndOfChild(kFailed);
}

}  // namespace qal::tools
