#include "diagnostics.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <ostream>

#include "../core/standard_output.h"

namespace qal {

namespace {

// A line with a number, made apart from the stream and without memory of its own.
template <typename... Number>
void WriteNumbered(std::string_view text, Number... number) {
  char line[128];  // the texts are short of 64
  char* end = std::copy(text.begin(), text.end(), line);
  end = std::to_chars(end, line + sizeof(line), number...).ptr;
  WriteLine(std::string_view(line, static_cast<size_t>(end - line)));
}

}  // namespace

void WriteError(std::string_view message) {
  // Nobody is left to tell when standard error itself is gone.
  (void)std::fwrite(message.data(), 1, message.size(), stderr);
}

void WriteLine(std::string_view text) {
  // Unformatted: the width and fill that the host has set don't reach the line.
  std::ostream& out = StandardOutput();
  out.write(text.data(), static_cast<std::streamsize>(text.size()));
  out << std::endl;
}

void WriteLine(std::string_view text, int number) { WriteNumbered(text, number); }

void WriteLine(std::string_view text, double number) {
  WriteNumbered(text, number, std::chars_format::general, 6);
}

}  // namespace qal
