#ifndef QAL_TOOLS_COMMON_OPTION_TEXT_H_
#define QAL_TOOLS_COMMON_OPTION_TEXT_H_

#include <CLI/Option.hpp>
#include <string>
#include <vector>

namespace qal::tools {

/// The lines of a text.
std::vector<std::string> LinesOf(const std::string& text);

/// The help of an option in its paragraphs: what it is, and, where it says so of each of its
/// choices ("ramp: ...", "limited, s-curve: ..."), that of each. The help breaks lines to fit a
/// terminal; these are whole.
std::vector<std::string> ParagraphsOf(const CLI::Option& option);

/// What an option is, in a line.
std::string FirstLine(const CLI::Option& option);

/// What an option's help says of one of its choices; "": nothing.
std::string TextOfChoice(const CLI::Option& option, const std::string& word);

}  // namespace qal::tools

#endif  // QAL_TOOLS_COMMON_OPTION_TEXT_H_
