#ifndef QAL_TOOLS_QAL_JOINT_ARGUMENTS_H_
#define QAL_TOOLS_QAL_JOINT_ARGUMENTS_H_

#include <qal/plan/joint_move.h>

#include <string>

#include "commands.h"
#include "move.h"

namespace qal::tools {

/// What `qal joint` takes.
struct JointArguments {
  EndOptions ends;
  std::string profile = "limited";
  NumberOption scale;
  NumberOption speed;
  NumberOption acc;
  PlanOptions plan;

  void AddTo(CLI::App& joint, const SharedArm& arm);
  /// @throw UsageError when options don't go with the profile
  void Check() const;
  /// Whether the profile is the one that keeps every limit.
  bool limited() const { return profile == "limited"; }
};

struct LimitedMove {
  JointMotion motion;
  Trajectory samples;
};

/// Plans within every limit of the joints.
/// @throw Failure when there is no plan: where, and why
LimitedMove PlanLimitedMove(const JointArguments& a, const Arm& arm);

/// The operation of another profile.
Planner ClassicPlanner(const JointArguments& a);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_JOINT_ARGUMENTS_H_
