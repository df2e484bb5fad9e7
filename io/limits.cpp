#include "limits.h"

#include <fmt/format.h>

#include <algorithm>

#include "error.h"

namespace qal::io {

void ExpectDepth(size_t depth) {
  if (depth <= kDeepest) return;
  throw UsageError(fmt::format("nested more than {} deep", kDeepest));
}

void ExpectCount(size_t values) {
  if (values <= kMostValues) return;
  throw UsageError(fmt::format("more than {} values", kMostValues));
}

void ExpectText(std::string_view text) {
  const size_t place = text.find('\0');
  if (place == std::string_view::npos) return;
  throw UsageError(fmt::format("line {}: a NUL byte; text is expected", LineAt(text, place)));
}

void LookThrough(std::string_view text, const std::function<size_t(size_t)>& step) {
  ExpectText(text);
  size_t place = 0;
  try {
    while (place < text.size()) place = step(place);
  } catch (const UsageError& error) {
    throw UsageError(fmt::format("line {}: {}", LineAt(text, place), error.what()));
  }
}

size_t LineAt(std::string_view text, size_t place) {
  const std::string_view before = text.substr(0, place);
  return 1 + static_cast<size_t>(std::count(before.begin(), before.end(), '\n'));
}

}  // namespace qal::io
