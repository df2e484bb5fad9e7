#ifndef QAL_IO_ERROR_H_
#define QAL_IO_ERROR_H_

#include <stdexcept>
#include <string>

namespace qal::io {

// Exit statuses of every command.
constexpr int kDone = 0;
constexpr int kFailed = 1;    // a sound request, but there is no answer, or a check found something
constexpr int kBadUsage = 2;  // arguments, input files or output files are not as they have to be

/// A sound request that has no answer: one line, exit status 1. Whatever a file has put into
/// the text, it is one line and not long: `OneLine`.
class Failure : public std::runtime_error {
 public:
  explicit Failure(const std::string& text);
};

/// Arguments or files are not as they have to be. The text is one line, as a failure's, that says
/// what, where and what was expected; exit status 2.
class UsageError : public std::runtime_error {
 public:
  explicit UsageError(const std::string& text);
};

}  // namespace qal::io

#endif  // QAL_IO_ERROR_H_
