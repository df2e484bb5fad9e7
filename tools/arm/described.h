#ifndef QAL_TOOLS_ARM_DESCRIBED_H_
#define QAL_TOOLS_ARM_DESCRIBED_H_

#include "../../src/qal/model/description.h"
#include "../../src/qal/model/frames.h"
#include "arm.h"

namespace qal::tools {

/// What was read, as the core takes it.
inline ArmDescription Described(const Arm& arm) {
  ArmDescription description;
  description.name = arm.name;
  description.base = arm.base;
  description.tip = arm.tip;
  for (size_t j = 0; j < arm.joints.size(); ++j) {
    const ArmJoint& joint = arm.joints[j];
    JointDescription& described = description.joints[j];
    described.name = joint.name;
    described.origin = FromFrame(joint.origin);
    described.axis = FromVector(joint.axis);
    if (!joint.limits) continue;
    described.lower_rad = joint.limits->lower;
    described.upper_rad = joint.limits->upper;
  }
  description.tip_in_last = FromFrame(arm.tip_in_last);
  description.rounded_angles = arm.rounded_angles;
  return description;
}

}  // namespace qal::tools

#endif  // QAL_TOOLS_ARM_DESCRIBED_H_
