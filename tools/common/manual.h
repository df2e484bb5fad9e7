#ifndef QAL_TOOLS_COMMON_MANUAL_H_
#define QAL_TOOLS_COMMON_MANUAL_H_

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace qal::tools {

/// The private first argument with which the build has a tool write its manual:
/// TOOL --write-manual FOLDER.
constexpr const char* kManualOption = "--write-manual";

/// A page of the manual, section 1.
struct ManualPage {
  std::string name;  ///< "qal-plan"
  std::string text;  ///< for man
};

/// The manual of a tool: a page for it and for each of its commands. All that they say is in the
/// parser: names, options and their help; in the footer what is to be known besides, and then what
/// follows "Exit status: ", "Environment: " and "Example: " at the beginning of a line.
std::vector<ManualPage> Manual(CLI::App& app);

}  // namespace qal::tools

#endif  // QAL_TOOLS_COMMON_MANUAL_H_
