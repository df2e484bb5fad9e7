#ifndef QAL_TOOLS_QAL_LINE_ARGUMENTS_H_
#define QAL_TOOLS_QAL_LINE_ARGUMENTS_H_

#include <string>

#include "move.h"

namespace qal::tools {

/// What `qal line` takes.
struct LineArguments {
  EndOptions ends;
  std::string profile = "limited";
  NumberOption speed;
  NumberOption acc;
  NumberOption jerk;
  NumberOption turn_speed;
  NumberOption turn_acc;
  NumberOption turn_jerk;
  NumberOption scale;
  NumberOption max_orientation_error;
  NumberOption precision;
  NumberOption motor_rpm;
  PlanOptions plan;
};

/// What the number of a limit may be: far around any arm's.
constexpr double kLeastLimit = 1e-6;
constexpr double kMostLimit = 1e6;

/// Plans within every limit of tool and joints, judges and writes.
/// @throw Failure when there is no plan: where, and why
void RunLimitedLine(const LineArguments& a);

/// Plans by a classic operation, judges and writes.
/// @throw UsageError when options don't go with the profile
void RunClassicLine(const LineArguments& a);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_LINE_ARGUMENTS_H_
