#ifndef QAL_SOLVE_CHUNK_SOLVER_H_
#define QAL_SOLVE_CHUNK_SOLVER_H_

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
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

/// The solutions of a chunk of poses.
class ChunkSolutions {
 public:
  /// Has none, and room for the most that a family of arms has of so many poses, which a solver
  /// library may need more than.
  void Begin(size_t poses) {
    constexpr size_t kMostOfFamily = 8;
    size = 0;
    counts.clear();
    counts.reserve(poses);
    if (room_ < kMostOfFamily * poses) Grow(kMostOfFamily * poses);
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

/// The solutions of a batch, to which chunks are added in their order, whoever has solved them.
class SolutionsInOrder {
 public:
  /// @param all   out
  /// @param poses of all chunks
  SolutionsInOrder(BatchSolutions& all, size_t poses) : all_(all), poses_(poses) {
    all_.first.reserve(poses + 1);
    all_.first.push_back(0);
  }

  /// A chunk to fill, with room that has been used before.
  ChunkSolutions Take();
  /// Takes a chunk, and adds those whose turn it is, if no other thread does so: a few of them, so
  /// that the thread goes on with its own work.
  void Put(size_t index, ChunkSolutions&& chunk);
  /// Adds what is left when all are put.
  void Finish();

 private:
  // Of up to so many chunks; with the lock, which is open while one is appended.
  void AppendNext(size_t most, std::unique_lock<std::mutex>& lock);
  void Append(const ChunkSolutions& chunk);

  BatchSolutions& all_;
  size_t poses_;
  std::mutex mutex_;
  std::map<size_t, ChunkSolutions> waiting_;
  std::vector<ChunkSolutions> spare_;
  size_t next_ = 0;
  bool appending_ = false;
};

/// Solves chunk after chunk.
class ChunkSolver {
 public:
  ChunkSolver(const Arm& arm, const BatchRequests& requests, const InverseOptions& inverse)
      : arm_(arm), requests_(requests), inverse_(inverse), blocks_(BlocksFor(arm, inverse)) {}

  /// @param reasons out: of the poses from `begin` up to `end`
  /// @param solved  out
  void operator()(size_t begin, size_t end, std::vector<Reason>& reasons,
                  ChunkSolutions& solved) const;

 private:
  Reason AddAlone(size_t i, ChunkSolutions& solved) const;

  const Arm& arm_;
  const BatchRequests& requests_;
  const InverseOptions& inverse_;
  std::optional<BlockInverse> blocks_;
};

}  // namespace qal

#endif  // QAL_SOLVE_CHUNK_SOLVER_H_
