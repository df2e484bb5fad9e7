#ifndef QAL_IO_MESSAGES_H_
#define QAL_IO_MESSAGES_H_

#include <string>
#include <vector>

namespace qal::io {

/// Writes "note: TEXT" as one line to standard error, the first time that it is said.
void Note(const std::string& text);

/// The text as one line to show: control characters, line ends among them, become blanks. Of a long
/// one, which a file's names make, the beginning and the end stay, 2000 bytes: where and what it
/// is, and what was expected.
std::string OneLine(std::string text);

/// The name of an arm, a link or a joint as texts show it, whatever a file has put there: one line,
/// up to 60 bytes.
std::string NameText(const std::string& name);

/// Names in quotes, for a message; of many the first eight and how many more there are.
std::string NamesText(const std::vector<std::string>& names);

/// Writes "WHO: TEXT" as one line to standard error.
void SayOnError(const std::string& who, const std::string& text);

}  // namespace qal::io

#endif  // QAL_IO_MESSAGES_H_
