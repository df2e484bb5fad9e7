#ifndef QAL_MODEL_JOINT_MODEL_H_
#define QAL_MODEL_JOINT_MODEL_H_

#include "arm.h"

// Internal: what a joint may do, from what was said of it.
namespace qal {

/// @param joint    from 0
/// @param settings goes before `described`; what neither says is assumed
/// @return kLimits when a number isn't one, a lower limit lies above the upper one, or another is
///         not above 0
Result<JointModel> MakeJointModel(int joint, const JointDescription& described,
                                  const JointSettings& settings);

/// @return kLimits, `detail` being `name`, unless the number is finite and above 0
std::optional<Error> ExpectPositive(int joint, const char* name, double value);

}  // namespace qal

#endif  // QAL_MODEL_JOINT_MODEL_H_
