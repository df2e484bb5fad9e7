#ifndef QAL_SOLVE_CHUNK_SOLVER_H_
#define QAL_SOLVE_CHUNK_SOLVER_H_

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

#include "batch.h"
#include "block_inverse.h"

// Internal: the solutions of many poses.
namespace qal {

/// The requests of a batch: poses, and reference joints of each or one for all.
struct BatchRequests {
  Span<const Pose> poses;
  Span<const Joints> near;

  const Joints& Near(size_t i) const { return near[near.size == 1 ? 0 : i]; }
  RequestBlock Block(size_t first, int count) const {
    return {&poses[first], &Near(first), near.size == 1, count};
  }
};

/// What solves a batch block by block; nothing where poses go one by one.
std::optional<BlockInverse> BlocksFor(const Arm& arm, const InverseOptions& inverse);

/// The solutions of a chunk of poses: room for the most that a family of arms has of each, which a
/// solver library may need more than.
class ChunkSolutions {
 public:
  ChunkSolutions() = default;
  explicit ChunkSolutions(size_t poses) {
    constexpr size_t kMostOfFamily = 8;
    counts.reserve(poses);
    Grow(kMostOfFamily * poses);
  }

  void Add(const Joints& solution, double distance_rad, Reason refusal) {
    if (size == room_) Grow(2 * room_);
    joints[size] = solution;
    distances_rad[size] = distance_rad;
    refusals[size] = refusal;
    ++size;
  }

  std::vector<size_t> counts = {};
  /// Of the first `size` elements; the others are not even cleared.
  std::unique_ptr<Joints[]> joints = {};
  std::unique_ptr<double[]> distances_rad = {};
  std::unique_ptr<Reason[]> refusals = {};
  size_t size = 0;

 private:
  template <class T>
  void Grow(size_t room, std::unique_ptr<T[]>& array) const {
    std::unique_ptr<T[]> larger(new T[room]);
    std::copy_n(array.get(), size, larger.get());
    array = std::move(larger);
  }
  void Grow(size_t room) {
    Grow(room, joints);
    Grow(room, distances_rad);
    Grow(room, refusals);
    room_ = room;
  }

  size_t room_ = 0;
};

/// Solves chunk after chunk.
class ChunkSolver {
 public:
  ChunkSolver(const Arm& arm, const BatchRequests& requests, const InverseOptions& inverse)
      : arm_(arm), requests_(requests), inverse_(inverse), blocks_(BlocksFor(arm, inverse)) {}

  /// @param reasons out: of the poses from `begin` up to `end`
  ChunkSolutions operator()(size_t begin, size_t end, std::vector<Reason>& reasons) const;

 private:
  Reason AddAlone(size_t i, ChunkSolutions& solved) const;

  const Arm& arm_;
  const BatchRequests& requests_;
  const InverseOptions& inverse_;
  std::optional<BlockInverse> blocks_;
};

}  // namespace qal

#endif  // QAL_SOLVE_CHUNK_SOLVER_H_
