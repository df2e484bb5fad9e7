#ifndef QAL_TESTS_SOLVER_URDF_CHAIN_H_
#define QAL_TESTS_SOLVER_URDF_CHAIN_H_

#include <kdl/chain.hpp>
#include <string>

/// The chain of a URDF from the link without a parent to `tip`.
/// @throw std::runtime_error when the file can't be read or the chain has a joint of another kind
///        than fixed, revolute and continuous
KDL::Chain ReadUrdfChain(const std::string& path, const std::string& tip);

#endif  // QAL_TESTS_SOLVER_URDF_CHAIN_H_
