#ifndef QAL_TOOLS_COMMON_LIBRARY_LINES_H_
#define QAL_TOOLS_COMMON_LIBRARY_LINES_H_

#include <streambuf>
#include <string>

namespace qal::tools {

/// While one lives, whatever the library and the solver write to standard output goes to standard
/// error, so that standard output carries data only. May be nested; the inner one has the text.
class LibraryLines : private std::streambuf {
 public:
  LibraryLines();
  ~LibraryLines() override;
  LibraryLines(const LibraryLines&) = delete;
  LibraryLines& operator=(const LibraryLines&) = delete;

  /// What has come through std::cout so far.
  const std::string& text() const { return text_; }

 private:
  int_type overflow(int_type character) override;
  std::streamsize xsputn(const char* characters, std::streamsize count) override;

  std::string text_;
  std::streambuf* cout_buffer_;
  int standard_output_;  // kept aside; below 0 when there is none
};

}  // namespace qal::tools

#endif  // QAL_TOOLS_COMMON_LIBRARY_LINES_H_
