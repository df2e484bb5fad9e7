#ifndef QAL_TESTS_SOLVER_URDF_CHAIN_H_
#define QAL_TESTS_SOLVER_URDF_CHAIN_H_

#include <kdl/chain.hpp>
#include <string>

/// The chain of an unbranched URDF, from its first link to its last, in the file's order.
/// @throw std::runtime_error when the file can't be read or has a joint of another kind.
KDL::Chain ReadUrdfChain(const std::string& path);

#endif  // QAL_TESTS_SOLVER_URDF_CHAIN_H_
