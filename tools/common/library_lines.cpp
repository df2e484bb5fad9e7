#include "library_lines.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>

namespace qal::tools {

// The descriptor is turned as well as the stream: a solver may write with printf.
LibraryLines::LibraryLines() {
  std::cout.flush();
  (void)std::fflush(stdout);
  standard_output_ = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  (void)::dup2(STDERR_FILENO, STDOUT_FILENO);
  cout_buffer_ = std::cout.rdbuf(this);
}

LibraryLines::~LibraryLines() {
  std::cout.rdbuf(cout_buffer_);
  (void)std::fflush(stdout);
  if (standard_output_ < 0) {
    (void)::close(STDOUT_FILENO);
    return;
  }
  (void)::dup2(standard_output_, STDOUT_FILENO);
  (void)::close(standard_output_);
}

std::streambuf::int_type LibraryLines::overflow(int_type character) {
  if (traits_type::eq_int_type(character, traits_type::eof())) return 0;
  const char one = traits_type::to_char_type(character);
  (void)xsputn(&one, 1);
  return character;
}

std::streamsize LibraryLines::xsputn(const char* characters, std::streamsize count) {
  text_.append(characters, static_cast<size_t>(count));
  // Nobody is left to tell when standard error itself is gone.
  (void)std::fwrite(characters, 1, static_cast<size_t>(count), stderr);
  return count;
}

}  // namespace qal::tools
