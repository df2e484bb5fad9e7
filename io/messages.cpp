#include "messages.h"

#include <cctype>
#include <cstdio>
#include <set>
#include <string_view>

namespace qal::io {

void Note(const std::string& text) {
  static std::set<std::string> said;
  if (said.insert(text).second) SayOnError("note", text);
}

std::string OneLine(std::string text) {
  constexpr size_t kBeginning = 1500;
  constexpr size_t kEnd = 500;
  constexpr std::string_view kCut = " ... ";
  if (text.size() > kBeginning + kCut.size() + kEnd) {
    const auto is_inside = [&text](size_t place) { return (text[place] & 0xC0) == 0x80; };
    size_t from = kBeginning;
    size_t to = text.size() - kEnd;
    // A character of up to four bytes stays whole.
    for (int i = 0; i < 3 && is_inside(from); ++i) --from;
    for (int i = 0; i < 3 && is_inside(to); ++i) ++to;
    text.replace(from, to - from, kCut);
  }
  const auto byte = [&text](size_t at) { return at < text.size() ? text[at] & 0xff : 0; };
  // Names from files are shown as they are, but for what would move the cursor.
  for (size_t i = 0; i < text.size(); ++i) {
    // Control characters beyond ASCII have two bytes in UTF-8.
    const bool has_two = byte(i) == 0xc2 && byte(i + 1) >= 0x80 && byte(i + 1) < 0xa0;
    const size_t count = has_two ? 2 : std::iscntrl(byte(i)) != 0 ? 1 : 0;
    text.replace(i, count, count, ' ');
  }
  return text;
}

std::string NameText(const std::string& name) {
  constexpr size_t kLongest = 60;
  const std::string text = OneLine(name);
  if (text.size() <= kLongest) return text;
  size_t end = kLongest;
  while (end > 0 && (text[end] & 0xc0) == 0x80) --end;  // not in the middle of a character
  return text.substr(0, end) + "...";
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
