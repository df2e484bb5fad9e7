#include "suggestion.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>

#include "messages.h"

namespace qal::io {

namespace {

// How many letters have to be put in, left out or replaced (Levenshtein's distance).
size_t EditDistance(const std::string& a, const std::string& b) {
  std::vector<size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (const char letter : a) {
    size_t diagonal = row[0]++;
    for (size_t i = 1; i < row.size(); ++i) {
      const size_t replaced = diagonal + (letter == b[i - 1] ? 0 : 1);
      diagonal = row[i];
      row[i] = std::min({replaced, row[i] + 1, row[i - 1] + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string SuggestionText(const std::string& name, const std::vector<std::string>& names) {
  constexpr size_t kLongest = 60;  // names as texts show them: a file's may be of any length
  const auto distance = [&name](const std::string& other) {
    return EditDistance(name.substr(0, kLongest), other.substr(0, kLongest));
  };
  constexpr size_t kMostNames = 1000;  // beyond it looking at each takes its time
  if (names.size() > kMostNames) return "there are " + NamesText(names);
  const auto nearest = std::min_element(
      names.begin(), names.end(),
      [&](const std::string& a, const std::string& b) { return distance(a) < distance(b); });
  if (nearest == names.end()) return "there are none";
  // At most every other letter is another.
  if (2 * distance(*nearest) <= name.size()) {
    return fmt::format("did you mean '{}'?", NameText(*nearest));
  }
  return "there are " + NamesText(names);
}

}  // namespace qal::io
