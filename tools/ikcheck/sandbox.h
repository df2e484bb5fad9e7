#ifndef QAL_TOOLS_IKCHECK_SANDBOX_H_
#define QAL_TOOLS_IKCHECK_SANDBOX_H_

#include <cstddef>
#include <functional>
#include <string>

namespace qal::ikcheck {

/// A step that took its process with it.
struct Loss {
  enum class Kind { kCrash, kExit, kHang };
  Kind kind;
  size_t step;
  std::string how;  ///< "signal 11 (Segmentation fault)", "exit status 3", "no return within 2 s"
};

/// What the steps wrote to standard output and standard error.
struct Printed {
  std::string text;  ///< the beginning of it; empty: nothing
  size_t step = 0;   ///< the first step that wrote
};

/// Runs code that may do anything in child processes, which answer through a `SharedArray`. The
/// calling process has to have a single thread.
class Sandbox {
 public:
  /// @param timeout_s how long a step may take [s]; it is then stopped within 1.25 times of that
  explicit Sandbox(double timeout_s) : timeout_s_(timeout_s) {}

  /// Runs step(0) to step(count - 1) in their order. After a step that doesn't return the rest goes
  /// on in a new child.
  /// @param lost called in this process for each step that didn't return; what it throws ends it
  /// all
  /// @throw std::system_error when there is no child to be had
  Printed Run(size_t count, const std::function<void(size_t)>& step,
              const std::function<void(const Loss&)>& lost) const;

 private:
  double timeout_s_;
};

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_SANDBOX_H_
