#ifndef QAL_BENCH_QUIET_H_
#define QAL_BENCH_QUIET_H_

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <streambuf>

namespace qal::bench {

/// Drops what the library prints while it exists; for operations that report as they succeed.
class Quiet {
 public:
  Quiet() : output_(std::cout.rdbuf(&nowhere_)), error_(dup(STDERR_FILENO)) {
    const int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nothing, STDERR_FILENO);
    close(nothing);
  }
  ~Quiet() {
    dup2(error_, STDERR_FILENO);
    close(error_);
    std::cout.rdbuf(output_);
  }
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;

 private:
  struct Nowhere : std::streambuf {
    int overflow(int c) override { return c; }
    std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
  };
  Nowhere nowhere_;
  std::streambuf* output_;
  int error_;
};

}  // namespace qal::bench

#endif  // QAL_BENCH_QUIET_H_
