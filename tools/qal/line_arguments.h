#ifndef QAL_TOOLS_QAL_LINE_ARGUMENTS_H_
#define QAL_TOOLS_QAL_LINE_ARGUMENTS_H_

#include <qal/plan/line.h>

#include <optional>
#include <string>

#include "commands.h"
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

  void AddTo(CLI::App& line, const SharedArm& arm);
  /// @throw UsageError when options don't go with the profile
  void Check() const;
  /// Whether the profile is the one that keeps every limit.
  bool limited() const { return profile == "limited"; }
};

/// What the number of a limit may be: far around any arm's.
constexpr double kLeastLimit = 1e-6;
constexpr double kMostLimit = 1e6;

// ---- Within every limit of tool and joints ----

LineLimits ReadLineLimits(const LineArguments& a);

/// kConfiguration where a line arrives with other joints than --to has: it keeps the configuration
/// that it begins in.
std::optional<Error> ArrivesElsewhere(const LineMotion& motion, const classic::Ends& ends);

struct LimitedLine {
  LineMotion motion;
  Trajectory samples;
};

/// @throw Failure when there is no plan: where, and why
LimitedLine PlanLimitedLine(const LineArguments& a, const Arm& arm);

/// Plans, judges and writes.
void RunLimitedLine(const LineArguments& a);

// ---- By a classic operation ----

/// What the profile's numbers are.
struct ClassicLine {
  int speed = 0;
  double precision = 0;
  classic::SCurveLimits s_curve = {};

  /// The same, slower.
  ClassicLine Slower(double part) const;
};

ClassicLine ReadClassicLine(const LineArguments& a);

/// The profile's operation.
Planner ClassicPlanner(const LineArguments& a, const ClassicLine& line);

/// Plans, judges and writes.
void RunClassicLine(const LineArguments& a);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_LINE_ARGUMENTS_H_
