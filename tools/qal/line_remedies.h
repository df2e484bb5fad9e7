#ifndef QAL_TOOLS_QAL_LINE_REMEDIES_H_
#define QAL_TOOLS_QAL_LINE_REMEDIES_H_

#include <qal/explain/explanation.h>

#include <vector>

#include "../../io/explanation_text.h"
#include "line_arguments.h"

namespace qal::tools {

/// A `qal line` that was asked for.
struct AskedLine {
  const LineArguments& arguments;
  const CLI::App& command;  ///< that has read them
  const Arm& arm;
  const classic::Ends& ends;
};

/// What would make it work: the changes in words, and the commands, of which each was tried as it
/// stands.
std::vector<io::Remedy> LineRemedies(const AskedLine& asked, const Explanation& why);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_LINE_REMEDIES_H_
