#ifndef QAL_TOOLS_COMMON_PROGRESS_H_
#define QAL_TOOLS_COMMON_PROGRESS_H_

#include <unistd.h>

#include <cstdio>
#include <string>

namespace qal::tools {

/// Says on a terminal how far the work is, in one line that is gone at the end.
class Progress {
 public:
  Progress() = default;
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() { Show(""); }
  void Show(const std::string& text) const {
    if (terminal_) (void)std::fputs(("\r\033[K" + text).c_str(), stderr);
  }

 private:
  bool terminal_ = ::isatty(STDERR_FILENO) == 1;
};

}  // namespace qal::tools

#endif  // QAL_TOOLS_COMMON_PROGRESS_H_
