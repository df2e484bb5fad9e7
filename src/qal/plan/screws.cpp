#include "screws.h"

#include "../solve/kinematics.h"
#include "../solve/solver_calls.h"

namespace qal {

Result<Screws> Screws::Of(const Arm& arm, const Joints& joints) {
  const Joints zero = {};
  const Result<Frame> tool = CallForward(arm, zero);
  if (!tool) return tool.error();
  const Result<JacobianMatrix> jacobian = Jacobian(arm, zero);
  if (!jacobian) return jacobian.error();
  Screws screws;
  screws.tool_ = *tool;
  for (size_t j = 0; j < screws.axes_.size(); ++j) {
    screws.axes_[j] = AxisOf(*jacobian, j, tool->position);
  }
  const Result<Frame> expected = CallForward(arm, joints);
  if (!expected) return expected.error();
  // Far above rounding, far below an arm whose joints aren't what they seem.
  constexpr double kTolerance = 1e-9;
  if (!(LargestDifference(screws.At(joints).tool, *expected) <= kTolerance)) {
    return Error{Reason::kSolverFault, -1, 0, 0, "ComputeFk is not that of six revolute joints"};
  }
  return screws;
}

PlacedArm Screws::At(const Joints& joints) const {
  PlacedArm placed;
  Frame frame = kIdentity;
  for (size_t j = 0; j < axes_.size(); ++j) {
    const auto& [point, direction] = axes_[j];
    const Vector3 axis = frame.rotation * direction;
    const Vector3 centre = frame.position + frame.rotation * point;
    placed.axes[j] = {Cross(centre, axis), axis};
    frame.rotation = frame.rotation * RotationMatrix(direction, joints[j]);
    frame.position = centre - frame.rotation * point;
  }
  placed.tool = frame * tool_;
  return placed;
}

}  // namespace qal
