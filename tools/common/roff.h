#ifndef QAL_TOOLS_COMMON_ROFF_H_
#define QAL_TOOLS_COMMON_ROFF_H_

#include <string>
#include <vector>

namespace qal::tools {

// The markup of manual pages, man(7).

/// A text as it is to be seen: no character of it is markup.
std::string Roff(const std::string& text);
/// "\fBTEXT\fR" and the like.
std::string Bold(const std::string& text);
std::string Italic(const std::string& text);

/// A section's heading.
std::string Section(const std::string& name);
/// Lines as they stand, for commands.
std::string AsItStands(const std::vector<std::string>& lines);
/// Prose of hard lines: filled to the reader's width; empty lines part paragraphs, and a line that
/// is indented stays one, as in a table.
std::string Prose(const std::vector<std::string>& lines);

}  // namespace qal::tools

#endif  // QAL_TOOLS_COMMON_ROFF_H_
