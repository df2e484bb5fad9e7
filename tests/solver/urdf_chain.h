#ifndef QAL_TESTS_SOLVER_URDF_CHAIN_H_
#define QAL_TESTS_SOLVER_URDF_CHAIN_H_

#include <kdl/chain.hpp>
#include <string>

/// The chain of a URDF from the link without a parent to `tip`.
/// Every joint that isn't fixed is taken to turn.
/// @throw std::runtime_error when the file or a vector in it can't be read
KDL::Chain ReadUrdfChain(const std::string& path, const std::string& tip);

#endif  // QAL_TESTS_SOLVER_URDF_CHAIN_H_
