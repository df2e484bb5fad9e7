#include "messages.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace qal::io {

void Note(const std::string& text) { SayOnError("note", text); }

void SayOnError(const std::string& who, const std::string& text) {
  std::string line = who + ": " + text;
  // Names from files are shown as they are, but for what would move the cursor.
  std::replace_if(
      line.begin(), line.end(), [](unsigned char c) { return std::iscntrl(c) != 0; }, ' ');
  line += '\n';
  // Nobody is left to tell when standard error itself is gone.
  (void)std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace qal::io
