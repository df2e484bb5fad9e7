#ifndef QAL_TOOLS_IKCHECK_EXCHANGE_H_
#define QAL_TOOLS_IKCHECK_EXCHANGE_H_

#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "solver.h"

namespace qal::ikcheck {

using Bytes = std::vector<std::uint8_t>;

/// A call that a child is in. For messages only: code that goes wrong may write anything there.
struct CallNote {
  std::string what;  ///< "ComputeIk", "when loaded and queried"; empty: none yet
  std::optional<Joints> joints = {};
  std::optional<Pose> pose = {};
};

/// What one child process leaves behind: its answer, what it wrote to standard output and standard
/// error, and the call that it is in. A file in memory that both processes have mapped, so that
/// neither waits for the other, and descriptors that are closed or left open change nothing.
class Exchange {
 public:
  Exchange();
  /// The same in a program that the child has become.
  explicit Exchange(int file);
  Exchange(const Exchange&) = delete;
  Exchange& operator=(const Exchange&) = delete;
  ~Exchange();
  int file() const { return file_; }

  // The child's side.

  /// Standard output and standard error become part of this; the answer is out of reach of wild
  /// writes until it is given.
  void Enter();
  void NoteCall(const char* what, const Joints* joints = nullptr, const Pose* pose = nullptr);
  bool HasOutput() const { return *static_cast<const volatile char*>(memory_) != '\0'; }
  /// Gives the answer and ends the process. Only in the one that entered: copies of it end without.
  [[noreturn]] void Answer(const Bytes& answer);

  // Both sides.

  /// The beginning of what was written.
  std::string Output() const;

  // The parent's side.

  std::uint64_t calls() const { return note().calls; }
  CallNote Call() const;
  /// The answer, if it is there as a whole.
  std::optional<Bytes> Answered() const;

  /// No file that a child writes is longer.
  static constexpr size_t kOutputBytes = 1 << 16;

 private:
  struct Note {
    std::atomic<std::uint64_t> calls;
    char what[40];
    std::uint8_t has_joints, has_pose;  // any number may be there
    Joints joints;
    Pose pose;
  };
  Note& note() const { return *static_cast<Note*>(At(kNoteAt)); }
  void* At(size_t offset) const { return static_cast<char*>(memory_) + offset; }

  // In pages of up to 64 KiB each.
  static constexpr size_t kNoteAt = kOutputBytes;
  static constexpr size_t kAnswerAt = kNoteAt + (1 << 16);
  static constexpr size_t kAnswerBytes = 1 << 20;

  int file_;
  void* memory_;
  pid_t entered_ = 0;
};

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_EXCHANGE_H_
