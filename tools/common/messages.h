#ifndef QAL_TOOLS_COMMON_MESSAGES_H_
#define QAL_TOOLS_COMMON_MESSAGES_H_

#include <string>

namespace qal::tools {

/// Writes "note: TEXT" as one line to standard error.
void Note(const std::string& text);

/// Writes "WHO: TEXT" as one line to standard error; control characters inside, line ends
/// among them, become blanks.
void SayOnError(const std::string& who, const std::string& text);

}  // namespace qal::tools

#endif  // QAL_TOOLS_COMMON_MESSAGES_H_
