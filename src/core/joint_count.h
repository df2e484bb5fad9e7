#ifndef QAL_CORE_JOINT_COUNT_H_
#define QAL_CORE_JOINT_COUNT_H_

namespace qal {

constexpr int kJointCount = 6;

}  // namespace qal

#endif  // QAL_CORE_JOINT_COUNT_H_
