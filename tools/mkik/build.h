#ifndef QAL_TOOLS_MKIK_BUILD_H_
#define QAL_TOOLS_MKIK_BUILD_H_

#include <string>
#include <vector>

namespace qal::tools {

/// The compiler's program, and arguments that go before all others: $CXX, or c++.
std::vector<std::string> CompilerCommand();

/// Compiles a solver's source into a shared library. The library appears whole or
/// not at all.
/// @throw Failure when there is no compiler or it fails; UsageError when `path` can't be written
void BuildLibrary(const std::string& source, const std::string& exports, const std::string& path);

}  // namespace qal::tools

#endif  // QAL_TOOLS_MKIK_BUILD_H_
