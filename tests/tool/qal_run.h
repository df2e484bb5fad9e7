#ifndef QAL_TESTS_TOOL_QAL_RUN_H_
#define QAL_TESTS_TOOL_QAL_RUN_H_

#include <nlohmann/json.hpp>

#include "../support/tool_run.h"

using Json = nlohmann::json;

/// A trajectory, one second from row to row: joint 4 makes 0.2 rad in the last one.
inline const std::string kFourRows =
    "time_s,q1_rad,q2_rad,q3_rad,q4_rad,q5_rad,q6_rad\n"
    "0,0,0.3,-0.2,0,0.5,0\n"
    "1,0.1,0.3,-0.2,0,0.5,0\n"
    "2,0.15,0.3,-0.2,0,0.5,0\n"
    "3,0.15,0.3,-0.2,-0.2,0.5,0\n";

inline ToolRun Qal(const std::string& arguments) { return Shell(QAL_BINARY " " + arguments); }

/// What a command that succeeds prints with --json.
inline Json QalJson(const std::string& arguments) {
  const ToolRun run = Qal(arguments + " --json");
  EXPECT_EQ(0, run.status) << run.err;
  return Json::parse(run.out);
}

#endif  // QAL_TESTS_TOOL_QAL_RUN_H_
