#include "batch.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <limits>

#include "batch_run.h"

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

// `answer(i)` for each element.
template <class T, class Answer>
BatchCount AnswerAll(size_t count, Span<T> answers, const T& none, Span<Reason> reasons,
                     const BatchOptions& options, Answer answer) {
  std::atomic<size_t> refused{0};
  BatchCount told;
  told.done = RunBatch(count, options, [&](size_t begin, size_t end) {
    size_t without = 0;
    for (size_t i = begin; i < end; ++i) {
      const auto result = answer(i);
      answers[i] = result ? *result : none;
      if (!result) ++without;
      if (reasons.size > 0) reasons[i] = result ? Reason::kNone : result.error().reason;
    }
    refused += without;
  });
  told.refused = refused;
  return told;
}

const Joints& NearOf(Span<const Joints> near, size_t i) { return near[near.size == 1 ? 0 : i]; }

// The solutions of a chunk of poses.
struct ChunkSolutions {
  std::vector<size_t> counts = {};
  std::vector<Candidate> candidates = {};
};

ChunkSolutions SolveChunk(const Arm& arm, Span<const Pose> poses, Span<const Joints> near,
                          const InverseOptions& inverse, size_t begin, size_t end,
                          std::vector<Reason>& reasons) {
  ChunkSolutions solved;
  for (size_t i = begin; i < end; ++i) {
    auto candidates = Inverse(arm, poses[i], NearOf(near, i), inverse);
    reasons[i] = candidates ? Reason::kNone : candidates.error().reason;
    solved.counts.push_back(candidates ? candidates->size() : 0);
    if (!candidates) continue;
    std::move(candidates->begin(), candidates->end(), std::back_inserter(solved.candidates));
  }
  return solved;
}

}  // namespace

BatchCount Forward(const Arm& arm, Span<const Joints> joints, Span<Pose> poses,
                   Span<Reason> reasons, const BatchOptions& options) {
  return AnswerAll(joints.size, poses, kNoPose, reasons, options,
                   [&](size_t i) { return Forward(arm, joints[i]); });
}

BatchCount Nearest(const Arm& arm, Span<const Pose> poses, Span<const Joints> near,
                   Span<Joints> joints, Span<Reason> reasons, const InverseOptions& inverse,
                   const BatchOptions& options) {
  return AnswerAll(poses.size, joints, kNoJoints, reasons, options,
                   [&](size_t i) -> Result<Joints> {
                     const auto state = Nearest(arm, poses[i], NearOf(near, i), inverse);
                     if (!state) return state.error();
                     return state->joints;
                   });
}

BatchSolutions Inverse(const Arm& arm, Span<const Pose> poses, Span<const Joints> near,
                       const InverseOptions& inverse, const BatchOptions& options) {
  BatchSolutions all;
  all.reasons.resize(poses.size);
  std::vector<ChunkSolutions> chunks((poses.size + kBatchChunk - 1) / kBatchChunk);
  all.done = RunBatch(poses.size, options, [&](size_t begin, size_t end) {
    chunks[begin / kBatchChunk] = SolveChunk(arm, poses, near, inverse, begin, end, all.reasons);
  });
  size_t candidates = 0;
  for (const ChunkSolutions& chunk : chunks) candidates += chunk.candidates.size();
  all.joints.reserve(candidates);
  all.distances_rad.reserve(candidates);
  all.refusals.reserve(candidates);
  all.first.reserve(poses.size + 1);
  all.first.push_back(0);
  for (ChunkSolutions& chunk : chunks) {
    for (const size_t count : chunk.counts) all.first.push_back(all.first.back() + count);
    for (const auto& [joints, distance_rad, refusal] : chunk.candidates) {
      all.joints.push_back(joints);
      all.distances_rad.push_back(distance_rad);
      all.refusals.push_back(refusal ? refusal->reason : Reason::kNone);
    }
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
