#ifndef QAL_TESTS_SUPPORT_CAPTURED_H_
#define QAL_TESTS_SUPPORT_CAPTURED_H_

#include <string>
#include <tuple>

#include "core/roadpoint.h"

/// What a call returned and wrote: result, standard output, standard error.
template <typename Result>
using Outcome = std::tuple<Result, std::string, std::string>;

/// Sends file descriptors 1 and 2 to files while it lives. Nothing is flushed on the library's
/// behalf: what it left in a buffer is missing.
class Capture {
 public:
  Capture();
  ~Capture();
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;
  /// What descriptor 1 or 2 has got so far.
  std::string Text(int descriptor) const;

 private:
  int file_[3];
  int saved_[3];
};

/// Runs `call` and says all that came of it.
template <typename Call>
auto Captured(Call call) {
  Capture capture;
  const auto result = call();
  return Outcome<std::decay_t<decltype(result)>>(result, capture.Text(1), capture.Text(2));
}

/// The block that `printfPoint` writes.
std::string Printed(RoadPoint point);

#endif  // QAL_TESTS_SUPPORT_CAPTURED_H_
