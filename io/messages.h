#ifndef QAL_IO_MESSAGES_H_
#define QAL_IO_MESSAGES_H_

#include <string>

namespace qal::io {

/// Writes "note: TEXT" as one line to standard error.
void Note(const std::string& text);

/// The text as one line to show: control characters, line ends among them, become blanks.
std::string OneLine(std::string text);

/// Writes "WHO: TEXT" as one line to standard error.
void SayOnError(const std::string& who, const std::string& text);

}  // namespace qal::io

#endif  // QAL_IO_MESSAGES_H_
