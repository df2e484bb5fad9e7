#ifndef QAL_MODEL_CLOSED_FORM_MODEL_H_
#define QAL_MODEL_CLOSED_FORM_MODEL_H_

#include <optional>
#include <string>
#include <variant>

#include "../../../solver/closed_form/parallel_axes.h"
#include "../../../solver/closed_form/spherical_wrist.h"
#include "description.h"

// Internal, and for the tool that writes solvers: the constants of a closed form.
namespace qal {

/// What the solving code knows of an arm.
using Model = std::variant<closed_form::SphericalWristArm, closed_form::ParallelAxesArm>;

/// The model of the family that an arm's axes belong to; three parallel axes go first. Lengths and
/// angles within 1e-13 of a plain number become that number.
/// @return nothing when it belongs to none; `ExamineFamilies` says why
std::optional<Model> MakeModel(const ArmDescription& arm);

const closed_form::Body& BodyOf(const Model& model);

/// "spherical wrist" or "three parallel axes".
const char* FamilyName(const Model& model);

/// Identifies the model's numbers: "qal-" and 16 hexadecimal digits.
std::string HashOf(const Model& model);

}  // namespace qal

#endif  // QAL_MODEL_CLOSED_FORM_MODEL_H_
