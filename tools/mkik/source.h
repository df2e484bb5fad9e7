#ifndef QAL_TOOLS_MKIK_SOURCE_H_
#define QAL_TOOLS_MKIK_SOURCE_H_

#include <string>

#include "../../src/qal/model/closed_form_model.h"

namespace qal::tools {

/// The solver as one C++17 file that needs nothing but the standard library: the solving code, the
/// arm's geometry as constants, and the entry points.
std::string SolverSource(const ArmDescription& arm, const FittedModel& fitted);

/// The linker's version script for it: the entry points are exported, and nothing else.
std::string SolverExports();

}  // namespace qal::tools

#endif  // QAL_TOOLS_MKIK_SOURCE_H_
