#ifndef QAL_MODEL_BLOCK_FUNCTIONS_H_
#define QAL_MODEL_BLOCK_FUNCTIONS_H_

#include "../../../solver/closed_form/block.h"

// Internal: what some solvers answer several of at once.
namespace qal {

using closed_form::BlockFlags;
using closed_form::BlockNumbers;
using closed_form::FrameBlock;
using closed_form::JointsBlock;
using closed_form::kBlock;
using closed_form::WaysBlock;

/// The functions of a solver for a block of targets or joint sets, with the bits of `Inverse` and
/// `Forward`.
class BlockFunctions {
 public:
  virtual void InverseBlock(const FrameBlock& targets, WaysBlock& ways) const = 0;
  /// @param alone out: joint sets that are for `Forward`
  virtual void ForwardBlock(const JointsBlock& joints, FrameBlock& frames,
                            BlockFlags& alone) const = 0;

 protected:
  constexpr BlockFunctions() = default;
  ~BlockFunctions() = default;
  BlockFunctions(const BlockFunctions&) = default;
  BlockFunctions& operator=(const BlockFunctions&) = default;
};

}  // namespace qal

#endif  // QAL_MODEL_BLOCK_FUNCTIONS_H_
