#include "error.h"

#include "messages.h"

namespace qal::io {

Failure::Failure(const std::string& text) : std::runtime_error(OneLine(text)) {}

UsageError::UsageError(const std::string& text) : std::runtime_error(OneLine(text)) {}

}  // namespace qal::io
