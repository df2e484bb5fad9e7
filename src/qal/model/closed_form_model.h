#ifndef QAL_MODEL_CLOSED_FORM_MODEL_H_
#define QAL_MODEL_CLOSED_FORM_MODEL_H_

#include <optional>
#include <string>
#include <variant>

#include "../../../solver/closed_form/general.h"
#include "../../../solver/closed_form/polished.h"
#include "description.h"
#include "family_member.h"
#include "result.h"
#include "solver.h"

// Internal, and for the tool that writes solvers: what the solving code knows of an arm.
namespace qal {

using Model =
    std::variant<closed_form::SphericalWristArm, closed_form::ParallelAxesArm,
                 closed_form::OffsetWristArm,
                 closed_form::PolishedArm<closed_form::SphericalWristArm>,
                 closed_form::PolishedArm<closed_form::ParallelAxesArm>,
                 closed_form::PolishedArm<closed_form::OffsetWristArm>, closed_form::GeneralArm>;

/// How far two arms' tips are from each other at the most, for the same joints.
struct TipDifference {
  double position_m = 0;
  double angle_rad = 0;
};

struct FittedModel {
  Model model;
  Family family;
  /// The family's nearest, which `model` is or comes from; nothing where there is no family.
  std::optional<Member> member;
  AxisDeviation deviation;  ///< of the described axes from the nearest member's
  bool exact;               ///< the nearest member is the described arm, to 1e-12
  bool polished;            ///< the model is the described arm, by way of the member
  bool IsDescribed() const { return exact || polished || !member; }
};

/// The model of the first family that the arm's axes are within tolerance of: the nearest member,
/// polished on the described chain where the two are not the same and the described geometry is
/// wanted. Where there is no such family, or polishing an offset wrist would lose solutions, the
/// general one.
/// @return kSingularEverywhere; kNoFamily where the nominal geometry is wanted
Result<FittedModel> MakeModel(const ArmDescription& arm, Geometry geometry = Geometry::kDescribed);

/// As the solving code does; compiled once, for it is large.
closed_form::Solutions Solve(const Model& model, const Frame& target);
Frame Forward(const Model& model, const Joints& joints);

/// Of a member's tip from the described one, over `joint_sets` seeded random ones within +-pi.
TipDifference DifferenceOf(const Member& member, const ArmDescription& arm, int joint_sets);

/// Identifies the model's numbers: "qal-" and 16 hexadecimal digits.
std::string HashOf(const Model& model);

}  // namespace qal

#endif  // QAL_MODEL_CLOSED_FORM_MODEL_H_
