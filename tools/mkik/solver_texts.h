#ifndef QAL_TOOLS_MKIK_SOLVER_TEXTS_H_
#define QAL_TOOLS_MKIK_SOLVER_TEXTS_H_

#include <string>

namespace qal::tools {

/// A file of the solving code, by its name without a folder: mkik writes these into the solvers
/// that it makes. Empty when there is no such file.
std::string SolverText(const std::string& name);

}  // namespace qal::tools

#endif  // QAL_TOOLS_MKIK_SOLVER_TEXTS_H_
