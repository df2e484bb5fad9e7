#ifndef QAL_TOOLS_MKIK_MODEL_H_
#define QAL_TOOLS_MKIK_MODEL_H_

#include <variant>

#include "../../solver/closed_form/parallel_axes.h"
#include "../../solver/closed_form/spherical_wrist.h"
#include "../arm/arm.h"

namespace qal::tools {

/// What the solving code knows of an arm.
using Model = std::variant<closed_form::SphericalWristArm, closed_form::ParallelAxesArm>;

using Axes = std::array<AxisLine, 6>;

/// The model of an arm that belongs to the family, by its axes at zero. Lengths and
/// angles within 1e-13 of a plain number become that number.
Model MakeSphericalWrist(const Arm& arm, const Axes& axes);
Model MakeParallelAxes(const Arm& arm, const Axes& axes);

const closed_form::Body& BodyOf(const Model& model);

/// "spherical wrist" or "three parallel axes".
const char* FamilyName(const Model& model);

}  // namespace qal::tools

#endif  // QAL_TOOLS_MKIK_MODEL_H_
