#ifndef QAL_IO_SUGGESTION_H_
#define QAL_IO_SUGGESTION_H_

#include <string>
#include <vector>

namespace qal::io {

/// What to say of a name that isn't among these: "did you mean 'NEAREST'?" where one is spelled
/// much like it, otherwise "there are 'A', 'B'", or "there are none".
std::string SuggestionText(const std::string& name, const std::vector<std::string>& names);

}  // namespace qal::io

#endif  // QAL_IO_SUGGESTION_H_
