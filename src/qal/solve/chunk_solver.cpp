#include "chunk_solver.h"

#ifdef __linux__
#include <sys/mman.h>
#endif

#include "../../kinematics/solve/solver_functions.h"

namespace qal {

namespace {

constexpr size_t kWays = 8;

// The solutions of request `k` of a block.
Reason AddOfBlock(const CandidateBlock& block, size_t k, ChunkSolutions& solved) {
  Reason reason = Reason::kOutOfReach;
  for (size_t way = 0; way < kWays; ++way) {
    if (block.reached[way][k] == 0) continue;
    const std::int64_t refused = block.refused[way][k];
    solved.Add(block.joints[way][k], block.distance_rad[way][k],
               refused == 0           ? Reason::kNone
               : refused == kForRange ? Reason::kJointRange
                                      : Reason::kStepBound);
    reason = Reason::kNone;
  }
  return reason;
}

// Where the memory that is reserved is large, it is to come in large pages: otherwise a batch takes
// as long to get its pages, one by one, as to be solved.
template <class T>
void Reserve(size_t room, std::vector<T>& all) {
  all.reserve(room);
#ifdef MADV_HUGEPAGE
  constexpr size_t kPage = 4096;
  constexpr size_t kLarge = size_t{4} << 20;
  void* begin = all.data();
  size_t size = room * sizeof(T);
  if (size < kLarge || std::align(kPage, kLarge / 2, begin, size) == nullptr) return;
  (void)::madvise(begin, size, MADV_HUGEPAGE);  // a wish
#endif
}

template <class T>
void AppendTo(std::vector<T>& all, const std::unique_ptr<T[]>& from, size_t size) {
  all.insert(all.end(), from.get(), from.get() + size);
}

}  // namespace

std::optional<BlockInverse> BlocksFor(const Arm& arm, const InverseOptions& inverse) {
  const BlockFunctions* const blocks = arm.functions().Blocks();
  // Written so that NaN goes one by one, and is refused there.
  if (blocks == nullptr || !(inverse.step_bound_rad >= 0)) return std::nullopt;
  return BlockInverse(arm, *blocks, inverse.step_bound_rad);
}

ChunkSolutions SolutionsInOrder::Take() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (spare_.empty()) return {};
  ChunkSolutions chunk = std::move(spare_.back());
  spare_.pop_back();
  return chunk;
}

void SolutionsInOrder::Put(size_t index, ChunkSolutions&& chunk) {
  constexpr size_t kFew = 4;
  std::unique_lock<std::mutex> lock(mutex_);
  waiting_.emplace(index, std::move(chunk));
  if (!appending_) AppendNext(kFew, lock);
}

void SolutionsInOrder::Finish() {
  std::unique_lock<std::mutex> lock(mutex_);
  AppendNext(waiting_.size(), lock);
}

void SolutionsInOrder::AppendNext(size_t most, std::unique_lock<std::mutex>& lock) {
  appending_ = true;
  for (size_t i = 0; i < most && !waiting_.empty() && waiting_.begin()->first == next_; ++i) {
    ChunkSolutions next = std::move(waiting_.begin()->second);
    waiting_.erase(waiting_.begin());
    lock.unlock();
    Append(next);
    lock.lock();
    spare_.push_back(std::move(next));
    ++next_;
  }
  appending_ = false;
}

void SolutionsInOrder::Append(const ChunkSolutions& chunk) {
  for (const size_t count : chunk.counts) all_.first.push_back(all_.first.back() + count);
  const size_t size = all_.joints.size() + chunk.size;
  if (size > all_.joints.capacity()) {
    // As many as there will be if it goes on so, and some more: memory that is not used costs less
    // than to move.
    const double part = static_cast<double>(all_.first.size() - 1) / static_cast<double>(poses_);
    const size_t room = std::max(static_cast<size_t>(1.1 * static_cast<double>(size) / part),
                                 2 * all_.joints.capacity());
    Reserve(room, all_.joints);
    Reserve(room, all_.distances_rad);
    Reserve(room, all_.refusals);
  }
  AppendTo(all_.joints, chunk.joints, chunk.size);
  AppendTo(all_.distances_rad, chunk.distances_rad, chunk.size);
  AppendTo(all_.refusals, chunk.refusals, chunk.size);
}

void ChunkSolver::operator()(size_t begin, size_t end, std::vector<Reason>& reasons,
                             ChunkSolutions& solved) const {
  solved.Begin(end - begin);
  for (size_t i = begin; i < end; i += kBlock) {
    const size_t size = std::min<size_t>(kBlock, end - i);
    CandidateBlock block;
    if (blocks_) {
      CandidatesOfBlock(*blocks_, requests_.Block(i, static_cast<int>(size)), block);
    }
    for (size_t k = 0; k < size; ++k) {
      const size_t before = solved.size;
      reasons[i + k] =
          blocks_ && block.alone[k] == 0 ? AddOfBlock(block, k, solved) : AddAlone(i + k, solved);
      solved.counts.push_back(solved.size - before);
    }
  }
}

Reason ChunkSolver::AddAlone(size_t i, ChunkSolutions& solved) const {
  const auto candidates = Inverse(arm_, requests_.poses[i], requests_.Near(i), inverse_);
  if (!candidates) return candidates.error().reason;
  for (const auto& [joints, distance_rad, refusal] : *candidates) {
    solved.Add(joints, distance_rad, refusal ? refusal->reason : Reason::kNone);
  }
  return Reason::kNone;
}

}  // namespace qal
