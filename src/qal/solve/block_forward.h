#ifndef QAL_SOLVE_BLOCK_FORWARD_H_
#define QAL_SOLVE_BLOCK_FORWARD_H_

#include "../model/block_functions.h"
#include "kinematics.h"

// Internal: forward kinematics of a block.
namespace qal {

/// The poses of up to `kBlock` joint sets, with the bits of `Forward`.
/// @param poses out
/// @return which joint sets have theirs, from the lowest bit on; the others are for `Forward`
unsigned ForwardOfBlock(const BlockFunctions& solver, const Joints* joints, int count, Pose* poses);

}  // namespace qal

#endif  // QAL_SOLVE_BLOCK_FORWARD_H_
