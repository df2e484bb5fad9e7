#ifndef QAL_TOOLS_COMMON_RUN_H_
#define QAL_TOOLS_COMMON_RUN_H_

#include <CLI/App.hpp>
#include <functional>
#include <string>
#include <vector>

namespace qal::tools {

/// The command line behind the program's name.
inline std::vector<std::string> ArgumentsOf(int argc, const char* const* argv) {
  return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

/// Arguments as the parser wants them: the last first, and a number with a sign but no digit in
/// front ("-.5") told apart from an option.
std::vector<std::string> ForParser(const std::vector<std::string>& arguments);

/// What main() of a tool is: reads the command line, and does what it asks for. Whatever goes wrong
/// becomes one line on standard error, "TOOL COMMAND: TEXT", and an exit status of io/error.h: a
/// UsageError and what the parser refuses 2, a Failure and everything else 1.
/// @param name     of the tool, as messages and the help call it
/// @param describe adds the options and commands to the parser; their callbacks do the work. A tool
///                 of commands calls `require_subcommand`, and a command of others that works
///                 without one as well `require_subcommand(0, 0)`
int RunTool(const std::string& name, const std::vector<std::string>& arguments,
            const std::function<void(CLI::App&)>& describe);

}  // namespace qal::tools

#endif  // QAL_TOOLS_COMMON_RUN_H_
