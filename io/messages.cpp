#include "messages.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace qal::io {

void Note(const std::string& text) { SayOnError("note", text); }

std::string OneLine(std::string text) {
  // Names from files are shown as they are, but for what would move the cursor.
  std::replace_if(
      text.begin(), text.end(), [](unsigned char c) { return std::iscntrl(c) != 0; }, ' ');
  return text;
}

std::string NamesText(const std::vector<std::string>& names) {
  constexpr size_t kShown = 8;
  std::string text;
  for (size_t i = 0; i < names.size() && i < kShown; ++i) {
    text += (i == 0 ? "'" : ", '") + names[i] + '\'';
  }
  if (names.size() > kShown) text += " and " + std::to_string(names.size() - kShown) + " more";
  return text;
}

void SayOnError(const std::string& who, const std::string& text) {
  const std::string line = OneLine(who + ": " + text) + '\n';
  // Nobody is left to tell when standard error itself is gone.
  (void)std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace qal::io
