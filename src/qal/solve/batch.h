#ifndef QAL_SOLVE_BATCH_H_
#define QAL_SOLVE_BATCH_H_

/// @file
/// Many joints or poses at once, worked off by all cores.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <type_traits>
#include <vector>

#include "kinematics.h"

namespace qal {

/// Elements one after the other that somebody else holds.
template <class T>
struct Span {
  T* data = nullptr;  ///< the first one
  size_t size = 0;    ///< how many there are

  /// Of nothing.
  Span() = default;
  /// Of `count` elements from `first` on.
  Span(T* first, size_t count) : data(first), size(count) {}
  /// Of a vector, which has to outlive it.
  // cppcheck-suppress noExplicitConstructor
  Span(std::vector<std::remove_const_t<T>>& vector)  // NOLINT(*-explicit-*)
      : data(vector.data()), size(vector.size()) {}
  /// Of a vector whose elements are read alone.
  template <class U = T, class = std::enable_if_t<std::is_const_v<U>>>
  // cppcheck-suppress noExplicitConstructor
  Span(const std::vector<std::remove_const_t<T>>& vector)  // NOLINT(*-explicit-*)
      : data(vector.data()), size(vector.size()) {}

  /// Element `i`, unchecked.
  T& operator[](size_t i) const { return data[i]; }
};

/// How a batch is worked off. The answers don't depend on it: each is that of the single call, to
/// the bit. Several threads call the arm's solver at once, which the closed forms are made for; one
/// that was loaded from a library of somebody else's may keep something from call to call
/// (`ikcheck` tells: `thread-unsafe`), and then needs `threads = 1`.
struct BatchOptions {
  unsigned threads = 0;  ///< the caller's counted; 0: as many as the processor runs at once
  /// Told in the calling thread, again and again, how many elements are done; false: stop. What it
  /// throws stops the batch and reaches the caller.
  std::function<bool(size_t done)> progress = {};
};

/// What became of a batch.
struct BatchCount {
  size_t done = 0;     ///< less than asked for where `progress` stopped it: then others than the
                       ///< first so many may be done, and what is written is to be thrown away
  size_t refused = 0;  ///< of them without an answer
};

/// `Forward` of many joints.
/// @param arm     the arm
/// @param joints  six joints for each pose [rad]
/// @param poses   out: of `joints.size` elements; NaN where there is none
/// @param reasons out: likewise, or empty: kNone, or why there is none
/// @param options threads and progress
/// @return how many are done, and how many of them have no pose
QAL_API BatchCount Forward(const Arm& arm, Span<const Joints> joints, Span<Pose> poses,
                           Span<Reason> reasons = {}, const BatchOptions& options = {});

/// `Nearest` of many poses.
/// @param arm     the arm
/// @param poses   of the tool, in the base frame
/// @param near    reference joints [rad]: as many as poses, or a single one for all
/// @param joints  out: of `poses.size` elements [rad]; NaN where there are none
/// @param reasons out: likewise, or empty: kNone, or why there are none
/// @param inverse the step bound
/// @param options threads and progress
/// @return how many are done, and how many of them have no joints
QAL_API BatchCount Nearest(const Arm& arm, Span<const Pose> poses, Span<const Joints> near,
                           Span<Joints> joints, Span<Reason> reasons = {},
                           const InverseOptions& inverse = {}, const BatchOptions& options = {});

/// Every solution of many poses: those of pose i from `first[i]` up to `first[i + 1]`.
struct BatchSolutions {
  std::vector<size_t> first = {};          ///< one more than poses
  std::vector<Joints> joints = {};         ///< as in `Candidate`, as are the next two
  std::vector<double> distances_rad = {};  ///< to the reference joints
  std::vector<Reason> refusals = {};       ///< kNone: admissible
  std::vector<Reason> reasons = {};        ///< of each pose; but for kNone it has no solutions
  size_t done = 0;                         ///< as in `BatchCount`
};

/// `Inverse` of many poses.
/// @param arm     the arm
/// @param poses   of the tool, in the base frame
/// @param near    reference joints [rad]: as many as poses, or a single one for all
/// @param inverse the step bound
/// @param options threads and progress
QAL_API BatchSolutions Inverse(const Arm& arm, Span<const Pose> poses, Span<const Joints> near,
                               const InverseOptions& inverse = {},
                               const BatchOptions& options = {});

/// `Jacobian` of many joints; NaN where there is none.
QAL_API BatchCount Jacobian(const Arm& arm, Span<const Joints> joints,
                            Span<JacobianMatrix> jacobians, Span<Reason> reasons = {},
                            const BatchOptions& options = {});

/// `DistanceToSingularities` of many joints; NaN where there is none.
QAL_API BatchCount DistanceToSingularities(const Arm& arm, Span<const Joints> joints,
                                           Span<Singularities> distances, Span<Reason> reasons = {},
                                           const BatchOptions& options = {});

}  // namespace qal

#endif  // QAL_SOLVE_BATCH_H_
