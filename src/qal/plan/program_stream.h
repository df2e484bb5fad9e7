#ifndef QAL_PLAN_PROGRAM_STREAM_H_
#define QAL_PLAN_PROGRAM_STREAM_H_

/// @file
/// Samples of a program while the rest of it is planned.

#include <memory>

#include "program.h"

namespace qal {

/// How many steps ahead the motion along a step is settled: a run without a stop is planned in
/// windows of twice as many steps, of which the first half is kept. So the first samples are there
/// once that many steps are planned.
constexpr size_t kLookAheadSteps = 8;

/// The samples of a program's motion while the rest of it is planned: those of `Sampled`, bit for
/// bit. Not to be copied; may be moved.
class QAL_API ProgramStream {
 public:
  /// Plans nothing yet.
  ProgramStream(const Arm& arm, Program program);
  ~ProgramStream();
  /// Goes on where another is; the other can only be assigned to or destroyed.
  ProgramStream(ProgramStream&& other) noexcept;
  /// Likewise, in place of its own.
  ProgramStream& operator=(ProgramStream&& other) noexcept;
  ProgramStream(const ProgramStream&) = delete;
  ProgramStream& operator=(const ProgramStream&) = delete;

  /// The next samples, one cycle of the arm apart.
  /// @param most of them at the most; 1 or more
  /// @return fewer, or none, at the end of the motion; the failure where a step can't be planned,
  ///         once the samples were read up to where the motion comes to rest before it
  Result<Trajectory, ProgramFailure> Read(size_t most);

  /// How many of the program's steps are planned.
  size_t planned_steps() const;

 private:
  struct Held;
  std::unique_ptr<Held> held_;
};

}  // namespace qal

#endif  // QAL_PLAN_PROGRAM_STREAM_H_
