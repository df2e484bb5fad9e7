#ifndef QAL_TESTS_SUPPORT_REFUSAL_H_
#define QAL_TESTS_SUPPORT_REFUSAL_H_

#include <string>

#include "../io/error.h"

/// The message with which `action` is refused.
template <typename Error = qal::io::UsageError, typename Action>
std::string Refusal(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error.what();
  }
  return "not refused";
}

#endif  // QAL_TESTS_SUPPORT_REFUSAL_H_
