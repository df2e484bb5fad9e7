#ifndef QAL_TOOLS_QAL_SOLUTION_TABLE_H_
#define QAL_TOOLS_QAL_SOLUTION_TABLE_H_

#include <qal/explain/explanation.h>

#include <functional>
#include <string>
#include <vector>

#include "units.h"

namespace qal::tools {

/// The solutions of a pose, a row each: joints, distance, the branch where the arm's have names,
/// and "refused: WHY" or what there is to say of an admissible one.
/// @param admissible gets the solution's place in the list, from 0
std::string SolutionTable(const std::vector<ExplainedSolution>& solutions, const Units& units,
                          const std::function<std::string(size_t)>& admissible);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_SOLUTION_TABLE_H_
