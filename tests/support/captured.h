#ifndef QAL_TESTS_SUPPORT_CAPTURED_H_
#define QAL_TESTS_SUPPORT_CAPTURED_H_

#include <gtest/gtest.h>
#include <stdio_ext.h>

#include <string>
#include <tuple>

#include "core/roadpoint.h"

/// What a call returned and wrote: result, standard output, standard error.
template <typename Result>
using Outcome = std::tuple<Result, std::string, std::string>;
using BoolOutcome = Outcome<bool>;
inline const BoolOutcome kSilentTrue(true, "", "");
inline const BoolOutcome kSilentFalse(false, "", "");

/// What the operations that ask the solver write when it finds nothing.
inline const std::string kUnsolved = "Failed to get  ik solution ArmJointIK \n";

/// Runs `call` and says all that came of it, as seen at file descriptors 1 and 2.
template <typename Call>
auto Captured(Call call) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const auto result = call();
  const size_t unflushed = __fpending(stdout);
  const std::string errors = testing::internal::GetCapturedStderr();
  const std::string output = testing::internal::GetCapturedStdout();
  EXPECT_EQ(unflushed, 0u) << output;
  return Outcome<std::decay_t<decltype(result)>>(result, output, errors);
}

/// The block that `printfPoint` writes.
inline std::string Printed(RoadPoint point) {
  return std::get<1>(Captured([&] { return point.printfPoint(), 0; }));
}

#endif  // QAL_TESTS_SUPPORT_CAPTURED_H_
