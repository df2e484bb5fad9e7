#ifndef QAL_KINEMATICS_FACADE_LOADED_ARM_H_
#define QAL_KINEMATICS_FACADE_LOADED_ARM_H_

#include "../solve/context.h"

namespace qal {

/// The arm that `Ikfunc` works for: the solver that the loader has found (`libik.so`, or the
/// executable itself), the reference arm's numbers, and messages that are printed as they come.
extern const Context kLoadedArm;

}  // namespace qal

#endif  // QAL_KINEMATICS_FACADE_LOADED_ARM_H_
