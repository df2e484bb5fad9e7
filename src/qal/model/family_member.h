#ifndef QAL_MODEL_FAMILY_MEMBER_H_
#define QAL_MODEL_FAMILY_MEMBER_H_

#include <variant>

#include "../../../solver/closed_form/offset_wrist.h"
#include "../../../solver/closed_form/parallel_axes.h"
#include "../../../solver/closed_form/spherical_wrist.h"
#include "family.h"
#include "lines.h"

// Internal: the constants of a family's closed form.
namespace qal {

using Member = std::variant<closed_form::SphericalWristArm, closed_form::ParallelAxesArm,
                            closed_form::OffsetWristArm>;

/// The member of a family, not the general one, that has these axes. Lengths and angles within
/// 1e-13 of a plain number become that number.
/// @param axes meet the family's conditions within rounding; with all joints at zero, as the tip
///             of `arm`, which is taken over
Member MakeMember(Family family, const ArmDescription& arm, const Axes& axes);

const closed_form::Body& BodyOf(const Member& member);

}  // namespace qal

#endif  // QAL_MODEL_FAMILY_MEMBER_H_
