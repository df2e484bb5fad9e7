#include "batch.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>

#include "../../kinematics/solve/solver_functions.h"
#include "batch_run.h"
#include "block_forward.h"
#include "block_inverse.h"

namespace qal {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr Pose kNoPose = {{kNaN, kNaN, kNaN}, {kNaN, kNaN, kNaN, kNaN}};
constexpr Joints kNoJoints = {kNaN, kNaN, kNaN, kNaN, kNaN, kNaN};
constexpr Singularities kNoDistances = {kNaN, kNaN, kNaN, kNaN};

JacobianMatrix NoJacobian() {
  JacobianMatrix matrix;
  for (auto& row : matrix.element) std::fill(std::begin(row), std::end(row), kNaN);
  return matrix;
}

// Whether element `k` of a block is answered.
bool IsIn(unsigned answered, size_t k) { return (answered >> k & 1U) != 0; }

// `answer(i)` for each element, but for those of a block from element `i` on that `block(i, count)`
// answers, with their reasons. It returns which, from the lowest bit on.
template <class T, class Answer, class Block>
BatchCount AnswerAll(size_t count, Span<T> answers, const T& none, Span<Reason> reasons,
                     const BatchOptions& options, Answer answer, Block block) {
  std::atomic<size_t> refused{0};
  BatchCount told;
  told.done = RunBatch(count, options, [&](size_t begin, size_t end) {
    size_t without = 0;
    for (size_t i = begin; i < end; i += kBlock) {
      const size_t size = std::min<size_t>(kBlock, end - i);
      Reason found[kBlock] = {};
      const unsigned answered = block(i, static_cast<int>(size), found);
      for (size_t k = 0; k < size; ++k) {
        if (!IsIn(answered, k)) {
          const auto result = answer(i + k);
          answers[i + k] = result ? *result : none;
          found[k] = result ? Reason::kNone : result.error().reason;
        }
        if (found[k] != Reason::kNone) ++without;
        if (reasons.size > 0) reasons[i + k] = found[k];
      }
    }
    refused += without;
  });
  told.refused = refused;
  return told;
}

template <class T, class Answer>
BatchCount AnswerAll(size_t count, Span<T> answers, const T& none, Span<Reason> reasons,
                     const BatchOptions& options, Answer answer) {
  return AnswerAll(count, answers, none, reasons, options, answer,
                   [](size_t, int, Reason*) { return 0U; });
}

const Joints& NearOf(Span<const Joints> near, size_t i) { return near[near.size == 1 ? 0 : i]; }

RequestBlock RequestsFrom(Span<const Pose> poses, Span<const Joints> near, size_t i, int count) {
  return {&poses[i], &NearOf(near, i), near.size == 1, count};
}

// What solves a batch block by block: null where poses go one by one.
const BlockFunctions* BlocksOf(const Arm& arm, const InverseOptions& inverse) {
  // Written so that NaN goes one by one, and is refused there.
  return inverse.step_bound_rad >= 0 ? arm.functions().Blocks() : nullptr;
}

// The solutions of a chunk of poses: room for the most that a family of arms has of each, which a
// solver library may need more than.
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
  // Of the first `size` elements; the others are not even cleared.
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

class ChunkSolver {
 public:
  ChunkSolver(const Arm& arm, Span<const Pose> poses, Span<const Joints> near,
              const InverseOptions& inverse)
      : arm_(arm), poses_(poses), near_(near), inverse_(inverse) {
    if (const BlockFunctions* const blocks = BlocksOf(arm, inverse)) {
      blocks_.emplace(arm, *blocks, inverse.step_bound_rad);
    }
  }

  ChunkSolutions operator()(size_t begin, size_t end, std::vector<Reason>& reasons) const {
    ChunkSolutions solved(end - begin);
    for (size_t i = begin; i < end; i += kBlock) {
      const size_t size = std::min<size_t>(kBlock, end - i);
      CandidateBlock block;
      if (blocks_) {
        CandidatesOfBlock(*blocks_, RequestsFrom(poses_, near_, i, static_cast<int>(size)), block);
      }
      for (size_t k = 0; k < size; ++k) {
        const size_t before = solved.size;
        reasons[i + k] =
            blocks_ && block.alone[k] == 0 ? AddOfBlock(block, k, solved) : AddAlone(i + k, solved);
        solved.counts.push_back(solved.size - before);
      }
    }
    return solved;
  }

 private:
  static Reason AddOfBlock(const CandidateBlock& block, size_t k, ChunkSolutions& solved) {
    Reason reason = Reason::kOutOfReach;
    for (size_t way = 0; way < 8; ++way) {
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

  Reason AddAlone(size_t i, ChunkSolutions& solved) const {
    const auto candidates = Inverse(arm_, poses_[i], NearOf(near_, i), inverse_);
    if (!candidates) return candidates.error().reason;
    for (const auto& [joints, distance_rad, refusal] : *candidates) {
      solved.Add(joints, distance_rad, refusal ? refusal->reason : Reason::kNone);
    }
    return Reason::kNone;
  }

  const Arm& arm_;
  Span<const Pose> poses_;
  Span<const Joints> near_;
  const InverseOptions& inverse_;
  std::optional<BlockInverse> blocks_;
};

template <class T>
void Append(const std::unique_ptr<T[]>& from, size_t size, std::vector<T>& to) {
  to.insert(to.end(), from.get(), from.get() + size);
}

}  // namespace

BatchCount Forward(const Arm& arm, Span<const Joints> joints, Span<Pose> poses,
                   Span<Reason> reasons, const BatchOptions& options) {
  const BlockFunctions* const blocks = arm.functions().Blocks();
  return AnswerAll(
      joints.size, poses, kNoPose, reasons, options,
      [&](size_t i) { return Forward(arm, joints[i]); },
      [&](size_t i, int count, Reason* /*all answered are kNone*/) {
        return blocks == nullptr ? 0U : ForwardOfBlock(*blocks, &joints[i], count, &poses[i]);
      });
}

BatchCount Nearest(const Arm& arm, Span<const Pose> poses, Span<const Joints> near,
                   Span<Joints> joints, Span<Reason> reasons, const InverseOptions& inverse,
                   const BatchOptions& options) {
  std::optional<BlockInverse> blocks;
  if (const BlockFunctions* const functions = BlocksOf(arm, inverse)) {
    blocks.emplace(arm, *functions, inverse.step_bound_rad);
  }
  return AnswerAll(
      poses.size, joints, kNoJoints, reasons, options,
      [&](size_t i) -> Result<Joints> {
        const auto state = Nearest(arm, poses[i], NearOf(near, i), inverse);
        if (!state) return state.error();
        return state->joints;
      },
      [&](size_t i, int count, Reason* found) {
        if (!blocks) return 0U;
        NearestBlock block;
        NearestOfBlock(*blocks, RequestsFrom(poses, near, i, count), block);
        unsigned answered = 0;
        for (int k = 0; k < count; ++k) {
          if (block.alone[k]) continue;
          answered |= 1U << k;
          found[k] = block.reasons[k];
          joints[i + static_cast<size_t>(k)] =
              found[k] == Reason::kNone ? block.joints[k] : kNoJoints;
        }
        return answered;
      });
}

BatchSolutions Inverse(const Arm& arm, Span<const Pose> poses, Span<const Joints> near,
                       const InverseOptions& inverse, const BatchOptions& options) {
  BatchSolutions all;
  all.reasons.resize(poses.size);
  std::vector<ChunkSolutions> chunks((poses.size + kBatchChunk - 1) / kBatchChunk);
  const ChunkSolver solve(arm, poses, near, inverse);
  all.done = RunBatch(poses.size, options, [&](size_t begin, size_t end) {
    chunks[begin / kBatchChunk] = solve(begin, end, all.reasons);
  });
  size_t candidates = 0;
  for (const ChunkSolutions& chunk : chunks) candidates += chunk.size;
  all.joints.reserve(candidates);
  all.distances_rad.reserve(candidates);
  all.refusals.reserve(candidates);
  all.first.reserve(poses.size + 1);
  all.first.push_back(0);
  for (ChunkSolutions& chunk : chunks) {
    for (const size_t count : chunk.counts) all.first.push_back(all.first.back() + count);
    Append(chunk.joints, chunk.size, all.joints);
    Append(chunk.distances_rad, chunk.size, all.distances_rad);
    Append(chunk.refusals, chunk.size, all.refusals);
    chunk = {};
  }
  return all;
}

BatchCount Jacobian(const Arm& arm, Span<const Joints> joints, Span<JacobianMatrix> jacobians,
                    Span<Reason> reasons, const BatchOptions& options) {
  return AnswerAll(joints.size, jacobians, NoJacobian(), reasons, options,
                   [&](size_t i) { return Jacobian(arm, joints[i]); });
}

BatchCount DistanceToSingularities(const Arm& arm, Span<const Joints> joints,
                                   Span<Singularities> distances, Span<Reason> reasons,
                                   const BatchOptions& options) {
  return AnswerAll(joints.size, distances, kNoDistances, reasons, options,
                   [&](size_t i) { return DistanceToSingularities(arm, joints[i]); });
}

}  // namespace qal
