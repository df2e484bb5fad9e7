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
#include "chunk_solver.h"

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

// Answers a block of elements from element `i` on: those that `block(i, size, found)` says it has
// answered, with their reasons, and the others by `answer`.
// @return how many have no answer
template <class T, class Answer, class Block>
size_t AnswerBlock(size_t i, size_t size, Span<T> answers, const T& none, Span<Reason> reasons,
                   Answer answer, Block block) {
  Reason found[kBlock] = {};
  const unsigned answered = block(i, static_cast<int>(size), found);
  size_t without = 0;
  for (size_t k = 0; k < size; ++k) {
    if ((answered >> k & 1U) == 0) {
      const auto result = answer(i + k);
      answers[i + k] = result ? *result : none;
      found[k] = result ? Reason::kNone : result.error().reason;
    }
    without += found[k] == Reason::kNone ? 0 : 1;
    if (reasons.size > 0) reasons[i + k] = found[k];
  }
  return without;
}

// `answer(i)` for each element, but for those of a block from element `i` on that
// `block(i, count, reasons)` answers. It returns which, from the lowest bit on.
template <class T, class Answer, class Block>
BatchCount AnswerAll(size_t count, Span<T> answers, const T& none, Span<Reason> reasons,
                     const BatchOptions& options, Answer answer, Block block) {
  std::atomic<size_t> refused{0};
  BatchCount told;
  told.done = RunBatch(count, options, [&](size_t begin, size_t end) {
    size_t without = 0;
    for (size_t i = begin; i < end; i += kBlock) {
      const size_t size = std::min<size_t>(kBlock, end - i);
      without += AnswerBlock(i, size, answers, none, reasons, answer, block);
    }
    refused += without;  // at once: threads wait for each other's writes
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
  const BatchRequests requests = {poses, near};
  const std::optional<BlockInverse> blocks = BlocksFor(arm, inverse);
  return AnswerAll(
      poses.size, joints, kNoJoints, reasons, options,
      [&](size_t i) -> Result<Joints> {
        const auto state = Nearest(arm, poses[i], requests.Near(i), inverse);
        if (!state) return state.error();
        return state->joints;
      },
      [&](size_t i, int count, Reason* found) {
        if (!blocks) return 0U;
        NearestBlock block;
        NearestOfBlock(*blocks, requests.Block(i, count), block);
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
  const BatchRequests requests = {poses, near};
  const ChunkSolver solve(arm, requests, inverse);
  SolutionsInOrder in_order(all, poses.size);
  all.done = RunBatch(poses.size, options, [&](size_t begin, size_t end) {
    ChunkSolutions chunk = in_order.Take();
    solve(begin, end, all.reasons, chunk);
    in_order.Put(begin / kBatchChunk, std::move(chunk));
  });
  in_order.Finish();
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
