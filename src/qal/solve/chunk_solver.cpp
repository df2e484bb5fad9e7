#include "chunk_solver.h"

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

}  // namespace

std::optional<BlockInverse> BlocksFor(const Arm& arm, const InverseOptions& inverse) {
  const BlockFunctions* const blocks = arm.functions().Blocks();
  // Written so that NaN goes one by one, and is refused there.
  if (blocks == nullptr || !(inverse.step_bound_rad >= 0)) return std::nullopt;
  return BlockInverse(arm, *blocks, inverse.step_bound_rad);
}

ChunkSolutions ChunkSolver::operator()(size_t begin, size_t end,
                                       std::vector<Reason>& reasons) const {
  ChunkSolutions solved(end - begin);
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
  return solved;
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
