#ifndef QAL_TOOLS_IKCHECK_PROCESS_STATE_H_
#define QAL_TOOLS_IKCHECK_PROCESS_STATE_H_

#include <map>
#include <string>

namespace qal::ikcheck {

/// What isn't as it should be in how this thread computes, "rounding, traps"; empty: rounding to
/// nearest, denormal numbers, no traps.
std::string OddFloatingPointMode();
/// Makes it so again.
void ResetFloatingPointMode();

/// What a process has one of, which all of its code shares: by name, such as "locale".
using ProcessState = std::map<std::string, std::string>;
ProcessState CurrentProcessState();
/// The names of what differs, "locale, signal handlers".
std::string Differences(const ProcessState& before, const ProcessState& after);

/// Bytes that are allocated.
size_t HeapBytes();

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_PROCESS_STATE_H_
