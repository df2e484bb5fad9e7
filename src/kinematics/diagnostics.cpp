#include "diagnostics.h"

#include <cstdio>
#include <iostream>
#include <locale>
#include <sstream>
#include <string>

namespace qal {

void WriteError(std::string_view message) {
  // Nobody is left to tell when standard error itself is gone.
  (void)std::fwrite(message.data(), 1, message.size(), stderr);
}

void WriteLine(std::string_view text) { std::cout << text << std::endl; }

void WriteLine(std::string_view text, int number) {
  // One insertion, formatted apart: the host's settings of std::cout don't reach the number, and
  // lines of two threads don't mix inside.
  WriteLine(std::string(text) + std::to_string(number));
}

void WriteLine(std::string_view text, double number) {
  std::ostringstream line;
  line.imbue(std::locale::classic());
  line << text << number;
  WriteLine(line.str());
}

}  // namespace qal
