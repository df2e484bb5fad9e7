#ifndef QAL_TOOLS_COMMON_PROGRESS_H_
#define QAL_TOOLS_COMMON_PROGRESS_H_

#include <unistd.h>

#include <chrono>
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

/// The same of work that is mostly done in less than a second, which needs no word.
class LateProgress {
 public:
  void Show(const std::string& text) const {
    if (std::chrono::steady_clock::now() - begin_ > std::chrono::seconds(1)) progress_.Show(text);
  }

 private:
  Progress progress_;
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

}  // namespace qal::tools

#endif  // QAL_TOOLS_COMMON_PROGRESS_H_
