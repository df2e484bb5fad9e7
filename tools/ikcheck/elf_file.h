#ifndef QAL_TOOLS_IKCHECK_ELF_FILE_H_
#define QAL_TOOLS_IKCHECK_ELF_FILE_H_

#include <string>
#include <vector>

namespace qal::ikcheck {

/// The functions that a shared library offers, as its file says; none of its code runs. Mangled
/// names; empty when the file has no section headers.
/// @throw UsageError "PATH: REASON" when it is no shared library for this machine
std::vector<std::string> ExportedFunctions(const std::string& path);

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_ELF_FILE_H_
