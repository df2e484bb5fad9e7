#ifndef QAL_TOOLS_COMMON_COMPLETE_H_
#define QAL_TOOLS_COMMON_COMPLETE_H_

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace qal::tools {

/// The private first argument with which shells ask a tool what may follow on its command line:
/// TOOL --complete-words WORD... (packaging/completion/).
constexpr const char* kCompleteOption = "--complete-words";

/// What may take the place of the last of `words`, which is empty or begun: a line each, "WORD",
/// a tab and what it is about; and for files "files:", a tab and patterns of their names. Of
/// "--option=value" it is the value alone.
/// @param words of the command line behind the tool's name, at least one
std::string Completions(CLI::App& app, const std::vector<std::string>& words);

}  // namespace qal::tools

#endif  // QAL_TOOLS_COMMON_COMPLETE_H_
