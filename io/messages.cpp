#include "messages.h"

#include <cctype>
#include <cstdio>

namespace qal::io {

void Note(const std::string& text) { SayOnError("note", text); }

std::string OneLine(std::string text, size_t most) {
  for (size_t i = 0; i < text.size(); ++i) {
    const auto byte = [&](size_t at) { return at < text.size() ? text[at] & 0xff : 0; };
    // Those above ASCII are two bytes of UTF-8; some terminals take them for escape sequences.
    const bool beyond_ascii = byte(i) == 0xc2 && byte(i + 1) >= 0x80 && byte(i + 1) < 0xa0;
    if (beyond_ascii || std::iscntrl(byte(i)) != 0) text.replace(i, beyond_ascii ? 2 : 1, " ");
  }
  if (text.size() <= most) return text;
  size_t end = most;
  while (end > 0 && (text[end] & 0xc0) == 0x80) --end;  // not in the middle of a character
  return text.substr(0, end) + "...";
}

std::string NameText(const std::string& name) {
  constexpr size_t kLongestName = 60;
  return OneLine(name, kLongestName);
}

std::string NamesText(const std::vector<std::string>& names) {
  constexpr size_t kShown = 8;
  std::string text;
  for (size_t i = 0; i < names.size() && i < kShown; ++i) {
    text += (i == 0 ? "'" : ", '") + NameText(names[i]) + '\'';
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
