#ifndef QAL_SOLVE_BLOCK_INVERSE_H_
#define QAL_SOLVE_BLOCK_INVERSE_H_

#include "../../kinematics/solve/judgement.h"
#include "../model/block_functions.h"
#include "kinematics.h"

// Internal: inverse kinematics of a block, with the bits of `Inverse` and `Nearest`. What is odd of
// a request is left to these.
namespace qal {

/// What the requests of a batch have in common.
struct BlockInverse {
  BlockInverse(const Arm& arm, const BlockFunctions& blocks, double step_bound_rad);

  const BlockFunctions& solver;
  double step_bound;
  JointRange ranges[6] = {};
  bool within_turn = true;  ///< no joint can stand a turn away from where a solver has it
};

/// Up to `kBlock` requests.
struct RequestBlock {
  const Pose* poses;
  const Joints* near;  ///< as many, or one for all
  bool one_near;
  int count;

  const Joints& Near(int i) const { return near[one_near ? 0 : i]; }
};

/// The answers of `Nearest`.
struct NearestBlock {
  Joints joints[kBlock];
  Reason reasons[kBlock];
  bool alone[kBlock];  ///< the request is for `Nearest`
};
void NearestOfBlock(const BlockInverse& inverse, const RequestBlock& requests,
                    NearestBlock& answers);

/// In `CandidateBlock::refused`.
constexpr std::int64_t kForRange = 1;
constexpr std::int64_t kForStep = 2;

/// The answers of `Inverse`: of each request eight ways in the solver's order.
struct CandidateBlock {
  Joints joints[8][kBlock];
  BlockNumbers distance_rad[8];
  BlockFlags refused[8];  ///< 0: admissible; kForRange; kForStep
  BlockFlags reached[8];
  BlockFlags alone;  ///< the request is for `Inverse`
};
void CandidatesOfBlock(const BlockInverse& inverse, const RequestBlock& requests,
                       CandidateBlock& answers);

}  // namespace qal

#endif  // QAL_SOLVE_BLOCK_INVERSE_H_
