#include "messages.h"

#include <algorithm>
#include <cstdio>

namespace qal::tools {

void Note(const std::string& text) { SayOnError("note", text); }

void SayOnError(const std::string& who, const std::string& text) {
  std::string line = who + ": " + text;
  std::replace(line.begin(), line.end(), '\n', ' ');
  line += '\n';
  // Nobody is left to tell when standard error itself is gone.
  (void)std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace qal::tools
