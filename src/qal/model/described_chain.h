#ifndef QAL_MODEL_DESCRIBED_CHAIN_H_
#define QAL_MODEL_DESCRIBED_CHAIN_H_

#include "../../../solver/closed_form/chain.h"
#include "lines.h"

// Internal: an arm as it is described, for the solving code.
namespace qal {

/// The described chain.
/// @param centre joint 5's origin is put where its axis is nearest to it: the wrist's centre
closed_form::Chain MakeChain(const ArmDescription& arm, const Vector3& centre);

}  // namespace qal

#endif  // QAL_MODEL_DESCRIBED_CHAIN_H_
