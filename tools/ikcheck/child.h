#ifndef QAL_TOOLS_IKCHECK_CHILD_H_
#define QAL_TOOLS_IKCHECK_CHILD_H_

#include <csignal>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "exchange.h"

namespace qal::ikcheck {

/// A signal has asked this process to end.
struct Interrupted {
  int signal;
};

/// How a child process ended.
struct ChildEnd {
  enum class Kind { kAnswered, kCrash, kExit, kHang };
  Kind kind;
  std::string how;     ///< "signal 11 (Segmentation fault)"; empty when it has answered
  std::string output;  ///< the beginning of what it wrote
  Bytes answer;
  bool left_processes;  ///< others that it has started were still there
};

/// Runs code that may do anything in child processes, each in a process group of its own. While it
/// lives, signals that ask this process to end wait until the children are gone. The calling
/// process has to have a single thread.
class ChildRunner {
 public:
  struct Limits {
    double call_s;   ///< how long one call may take; a call is what `Exchange::NoteCall` begins
    double whole_s;  ///< and all of them together
  };

  explicit ChildRunner(const Limits& limits);
  ChildRunner(const ChildRunner&) = delete;
  ChildRunner& operator=(const ChildRunner&) = delete;
  ~ChildRunner();

  /// Has a child compute an answer. Whatever the child does, this returns, and neither the child
  /// nor what it has started is left.
  /// @throw Interrupted, std::system_error when there is no child to be had
  ChildEnd Run(Exchange& exchange, const std::function<Bytes()>& work) const;

 private:
  struct Remains {
    int status;   // of the child
    bool others;  // there were processes besides it
  };
  std::string Wait(pid_t child, const Exchange& exchange) const;
  Remains EndAll(pid_t child) const;

  Limits limits_;
  sigset_t awaited_;
  sigset_t mask_before_;
  std::vector<pid_t> children_before_;
};

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_CHILD_H_
