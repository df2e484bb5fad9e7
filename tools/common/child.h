#ifndef QAL_TOOLS_COMMON_CHILD_H_
#define QAL_TOOLS_COMMON_CHILD_H_

#include <functional>
#include <optional>
#include <string>

namespace qal::tools {

/// How a child process ended.
struct ChildEnd {
  std::optional<std::string> said;  ///< what its work returned; nothing: it didn't return
  bool succeeded;                   ///< with exit status 0
  std::string how;  ///< "status 1", "signal 11, Segmentation fault", "no end in 30 s"
};

/// Runs `work` in a child process and waits for its end. What it does stays there: it is the first
/// of a process group of its own, all of which ends when time is up or this process is to stop
/// (Ctrl-C, `kill`); this process then stops as soon as nothing holds the signal (`HeldSignals`).
/// @param work      standard input is empty for it; throws nothing
/// @param timeout_s for the work, which then has 2 GiB of memory at the most; none: as it takes
/// @throw io::Failure when there is no process to be had
ChildEnd RunInChild(const std::function<std::string()>& work, std::optional<int> timeout_s);

/// The exit status of the child that went on in this process's place.
struct ChildStatus {
  int status;
};

/// Goes on in a child process, whatever a solver does to it: returns there. This process waits for
/// the child's `EndOfChild`, passes on what tells it to stop, and throws.
/// @throw ChildStatus the child's, here
/// @throw io::Failure "SOLVER: ..." when the child ends on its way, with exit status 0 as well
void GoOnInChild(const std::string& solver);

/// Says that this process, if it is such a child, has done its work. Returns `status`.
int EndOfChild(int status);

}  // namespace qal::tools

#endif  // QAL_TOOLS_COMMON_CHILD_H_
