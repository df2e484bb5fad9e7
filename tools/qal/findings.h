#ifndef QAL_TOOLS_QAL_FINDINGS_H_
#define QAL_TOOLS_QAL_FINDINGS_H_

#include <string>

#include "../../io/findings.h"
#include "tables.h"

namespace qal::tools {

/// What a verification of a trajectory file found, as a text and for programs.
/// @param name what the file is called
std::string FindingsText(const io::Findings& findings, const std::string& name);
Json FindingsJson(const io::Findings& findings, const std::string& name);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_FINDINGS_H_
