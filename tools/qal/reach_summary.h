#ifndef QAL_TOOLS_QAL_REACH_SUMMARY_H_
#define QAL_TOOLS_QAL_REACH_SUMMARY_H_

#include <string>

#include "../../io/json.h"
#include "../../io/reach_file.h"
#include "units.h"

namespace qal::tools {

/// What a reach study comes to, as rows of a table: how many cells are reached, and the best one.
std::string ReachSummaryTable(const io::ReachFile& file, const Units& units);
/// The same as JSON, always in rad and m.
io::Json ReachSummaryJson(const io::ReachFile& file);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_REACH_SUMMARY_H_
