#ifndef QAL_MODEL_GENERAL_ARM_H_
#define QAL_MODEL_GENERAL_ARM_H_

#include "../../../solver/closed_form/general.h"

// Internal: what the solving code needs to know of six revolute joints that belong to no family.
namespace qal {

/// Whether there is a way of the tool that no joints make, wherever they are: two of the axes
/// coincide, four are parallel, four meet in a point, and the like, or nearly so. Such an arm has
/// no solution for nearly all poses, and infinitely many for the others.
/// @return whether at each of 20 random joint sets the least pivot of the Jacobian, taken in
///         lengths of the whole arm, is below 1e-3
bool IsSingularEverywhere(const closed_form::Chain& chain);

/// Solves one pose completely; about 10 ms. The solutions that are known, one at first, are
/// followed to random poses and back on paths that differ: round trips exchange solutions, and so
/// bring unknown ones (Duff et al., "Solving polynomial systems via homotopy continuation and
/// monodromy", IMA Journal of Numerical Analysis 39, 2019). It ends with 16, or when 20 round trips
/// in a row brought none. The same chain gives the same arm, to the last bit.
/// @param chain not singular everywhere
closed_form::GeneralArm MakeGeneralArm(const closed_form::Chain& chain);

}  // namespace qal

#endif  // QAL_MODEL_GENERAL_ARM_H_
