#ifndef QAL_TESTS_SUPPORT_REFUSAL_H_
#define QAL_TESTS_SUPPORT_REFUSAL_H_

#include <string>

#include "../../tools/common/error.h"

/// The message with which `action` is refused.
template <typename Error = qal::tools::UsageError, typename Action>
std::string Refusal(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error.what();
  }
  return "not refused";
}

#endif  // QAL_TESTS_SUPPORT_REFUSAL_H_
