#ifndef QAL_TOOLS_COMMON_VERSION_H_
#define QAL_TOOLS_COMMON_VERSION_H_

#include <string>

namespace qal::tools {

/// "TOOL 1.0.0".
std::string VersionOf(const std::string& tool);

}  // namespace qal::tools

#endif  // QAL_TOOLS_COMMON_VERSION_H_
