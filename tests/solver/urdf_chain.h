#ifndef QAL_TESTS_SOLVER_URDF_CHAIN_H_
#define QAL_TESTS_SOLVER_URDF_CHAIN_H_

#include <kdl_parser/kdl_parser.hpp>
#include <stdexcept>

/// The chain of a URDF from the link without a parent to `tip`.
/// @throw std::runtime_error when there is none
inline KDL::Chain ReadUrdfChain(const std::string& path, const std::string& tip) {
  KDL::Tree tree;
  KDL::Chain chain;
  if (!kdl_parser::treeFromFile(path, tree) ||
      !tree.getChain(tree.getRootSegment()->first, tip, chain)) {
    throw std::runtime_error("no chain to " + tip + " in " + path);
  }
  return chain;
}

#endif  // QAL_TESTS_SOLVER_URDF_CHAIN_H_
