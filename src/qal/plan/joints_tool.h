#ifndef QAL_PLAN_JOINTS_TOOL_H_
#define QAL_PLAN_JOINTS_TOOL_H_

#include "../model/arm.h"
#include "joint_path.h"
#include "tool_path.h"

// Internal: where joints that go a way of their own have the tool.
namespace qal {

/// The path of the tool that a path of the joints makes.
class JointsTool final : public ToolPath {
 public:
  /// @param joints a path of at least one piece
  /// @param near   orientations are signed as this one
  JointsTool(const Arm& arm, const Screws& screws, const JointPath& joints, const Pose& near)
      : ToolPath(joints.last().s - joints.begin(0)),
        arm_(arm),
        screws_(screws),
        joints_(joints),
        near_(near) {}

  Pose PoseAt(double x) const override;
  ToolRates RatesAt(double x) const override;

 private:
  PathPoint PointAt(double x) const { return joints_.At(joints_.begin(0) + x); }

  Arm arm_;
  Screws screws_;
  JointPath joints_;
  Pose near_;
};

}  // namespace qal

#endif  // QAL_PLAN_JOINTS_TOOL_H_
