#ifndef QAL_PLAN_JOINTS_TOOL_H_
#define QAL_PLAN_JOINTS_TOOL_H_

#include "../model/arm.h"
#include "joint_path.h"
#include "tool_path.h"

// Internal: where joints that go a way of their own have the tool.
namespace qal {

/// The path of the tool that a path of the joints makes. Its rates are interpolated between the
/// ends of the joints' pieces, which are as short as the joints need: they are what limits are
/// judged by, again and again.
class JointsTool final : public ToolPath {
 public:
  /// @param joints a path of at least one piece
  /// @param near   orientations are signed as this one
  JointsTool(const Arm& arm, const Screws& screws, const JointPath& joints, const Pose& near);

  Pose PoseAt(double x) const override;
  ToolRates RatesAt(double x) const override;

 private:
  Arm arm_;
  JointPath joints_;
  JointPath
      tool_;  // in place of joints 1 to 3 the tool's centre, of 4 to 6 what its turns add up to
  Pose near_;
};

}  // namespace qal

#endif  // QAL_PLAN_JOINTS_TOOL_H_
