#ifndef QAL_TOOLS_MKIK_FAMILY_H_
#define QAL_TOOLS_MKIK_FAMILY_H_

#include "model.h"

namespace qal::tools {

/// How far axes may be from parallel, from right angles and from meeting. Angles written with ten
/// decimals lie within; what is left can't be seen in the solver's answers.
constexpr double kAxisAngleToleranceRad = 1e-10;
constexpr double kAxisDistanceToleranceM = 1e-10;

/// The model of the family that the arm's axes belong to; three parallel axes go first.
/// @throw Failure that names, for each family, the axes that keep the arm out and by how much, and
///        the angles that were found
Model FindFamily(const Arm& arm);

}  // namespace qal::tools

#endif  // QAL_TOOLS_MKIK_FAMILY_H_
