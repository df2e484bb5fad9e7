#include "captured.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

Capture::Capture() {
  std::fflush(nullptr);  // what was written before is not part of it
  for (const int descriptor : {1, 2}) {
    file_[descriptor] = memfd_create("captured", 0);
    saved_[descriptor] = dup(descriptor);
    if (file_[descriptor] < 0 || dup2(file_[descriptor], descriptor) < 0) std::abort();
  }
}

Capture::~Capture() {
  std::fflush(nullptr);
  for (const int descriptor : {1, 2}) {
    dup2(saved_[descriptor], descriptor);
    close(saved_[descriptor]);
    close(file_[descriptor]);
  }
}

std::string Capture::Text(int descriptor) const {
  std::string text(static_cast<size_t>(lseek(file_[descriptor], 0, SEEK_END)), '\0');
  if (pread(file_[descriptor], text.data(), text.size(), 0) < 0) std::abort();
  return text;
}

std::string Printed(RoadPoint point) {
  return std::get<1>(Captured([&] {
    point.printfPoint();
    return 0;
  }));
}
