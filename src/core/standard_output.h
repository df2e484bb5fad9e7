#ifndef QAL_CORE_STANDARD_OUTPUT_H_
#define QAL_CORE_STANDARD_OUTPUT_H_

#include <ostream>  // says which standard library this is

#ifndef __GLIBCXX__
#include <iostream>
#endif

namespace qal {

// GNU's <iostream> has the streams set up by every library that includes it, when it is loaded.
// This library runs nothing then: it takes the stream by its symbol, and sees to it when it first
// writes.
#ifdef __GLIBCXX__
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
extern std::ostream standard_output __asm__("_ZSt4cout");

/// `std::cout`.
inline std::ostream& StandardOutput() {
  static const std::ios_base::Init streams;
  return standard_output;
}
#else
/// `std::cout`.
inline std::ostream& StandardOutput() { return std::cout; }
#endif

}  // namespace qal

#endif  // QAL_CORE_STANDARD_OUTPUT_H_
