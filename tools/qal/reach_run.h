#ifndef QAL_TOOLS_QAL_REACH_RUN_H_
#define QAL_TOOLS_QAL_REACH_RUN_H_

#include <cstddef>
#include <string>

#include "../../io/loaded_arm.h"
#include "../../io/reach_file.h"

namespace qal::tools {

/// A reach study, or a shard of it, that ends in a file.
struct ReachRequest {
  const Arm& arm;
  std::string description;  ///< of the study: io::ReachStudyJson
  ReachStudy study;
  size_t first;  ///< cell
  size_t last;   ///< the one behind the last
  std::string out;
  bool resume;
  unsigned threads;
};

/// Studies the cells and writes the file. While it runs, OUT.part holds what is done so far: it is
/// written at the beginning, so that a folder without permission shows at once, then now and then,
/// and when the study is stopped (Ctrl-C, kill), after which the process ends by the signal.
/// @throw UsageError when OUT or OUT.part is there and of something else
/// @throw Failure    when the solver fails
io::ReachFile RunReach(const ReachRequest& request);

/// Refuses to replace what is no file of this study.
/// @throw UsageError
void ExpectOwnOutput(const std::string& path, const std::string& description);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_REACH_RUN_H_
