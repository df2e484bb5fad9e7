#ifndef QAL_TOOLS_QAL_COMMANDS_H_
#define QAL_TOOLS_QAL_COMMANDS_H_

#include <CLI/App.hpp>

namespace qal::tools {

// Each adds one command. It runs when the command line has been parsed, writes its data to standard
// output, and throws UsageError or Failure.

void AddFk(CLI::App& app);
void AddIk(CLI::App& app);
void AddJog(CLI::App& app);
void AddLine(CLI::App& app);
void AddJoint(CLI::App& app);
void AddConvert(CLI::App& app);
void AddVerify(CLI::App& app);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_COMMANDS_H_
