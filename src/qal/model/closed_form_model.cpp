#include "closed_form_model.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "described_chain.h"
#include "general_arm.h"
#include "nearest_member.h"

namespace qal {

namespace {

using closed_form::Chain;
using closed_form::PolishedArm;

// Where member and described arm differ by less nothing is left to polish.
constexpr double kExact = 1e-12;

// An offset wrist's solutions come near to being one in so many places that polishing would lose 1
// in 100,000 where it differs by more, in metres and radians.
constexpr double kNearOffsetWrist = 1e-9;

template <class Member>
TipDifference Difference(const Member& member, const ArmDescription& arm, int joint_sets) {
  std::mt19937 engine(20261125);
  std::uniform_real_distribution<double> range(-kPi, kPi);
  TipDifference largest;
  for (int i = 0; i < joint_sets; ++i) {
    Joints joints;
    for (double& joint : joints) joint = range(engine);
    const Frame tip = Forward(member, joints.data());
    const Frame described = ToFrame(TipFrame(arm, joints));
    const double apart = Length(tip.position - described.position);
    const double angle = AngleBetween(tip.rotation, described.rotation);
    largest.position_m = std::max(largest.position_m, apart);
    largest.angle_rad = std::max(largest.angle_rad, angle);
  }
  return largest;
}

// On axis 5.
Vector3 WristCentre(Family family, const Axes& axes) {
  return MeetingOf(axes[4], axes[family == Family::kThreeParallelAxes ? 5 : 3]).point;
}

template <class Member>
PolishedArm<Member> Polished(const Member& member, const ArmDescription& arm, const Vector3& centre,
                             const TipDifference& difference) {
  // By so much, in differences, targets are moved to find ways that the member itself has not, and
  // targets past the rim still count as reached.
  constexpr double kNearby = 4;
  constexpr double kSlack = 2;
  PolishedArm<Member> polished = {member, MakeChain(arm, centre), 0, {}};
  const double lever = Length(member.body.centre_in_tool);
  polished.member.body.slack = kSlack * (difference.position_m + lever * difference.angle_rad);
  polished.apart_m = kNearby * difference.position_m;
  const double apart = kNearby * difference.angle_rad;
  polished.apart = {std::sin(apart), std::cos(apart)};
  return polished;
}

FittedModel General(const ArmDescription& arm) {
  const Chain chain = MakeChain(arm, AxesOf(arm)[4].point);
  return {MakeGeneralArm(chain), Family::kGeneral, std::nullopt, {}, false, false};
}

}  // namespace

Result<FittedModel> MakeModel(const ArmDescription& arm, Geometry geometry) {
  constexpr int kJointSets = 1000;
  const FamilyReport report = ExamineFamilies(arm);
  const FamilyFit* const fit = report.Fitting();
  if (fit == nullptr) {
    if (report.singular_everywhere) return Error{Reason::kSingularEverywhere};
    if (geometry == Geometry::kNominal) return Error{Reason::kNoFamily};
    return General(arm);
  }
  const Axes axes = NearestMember(AxesOf(arm), ConditionsOf(fit->family));
  const Vector3 centre = WristCentre(fit->family, axes);
  const Member nearest = MakeMember(fit->family, arm, axes);
  return std::visit(
      [&](const auto& member) -> Result<FittedModel> {
        const TipDifference difference = Difference(member, arm, kJointSets);
        const auto within = [&](double most) {
          return difference.position_m <= most && difference.angle_rad <= most;
        };
        const bool exact = within(kExact);
        const bool polished = geometry == Geometry::kDescribed && !exact;
        FittedModel fitted = {member, fit->family, nearest, fit->nearest, exact, polished};
        if (!polished) return fitted;
        const bool offset = fit->family == Family::kOffsetWrist;
        if (offset && !within(kNearOffsetWrist)) return General(arm);
        fitted.model = Polished(member, arm, centre, difference);
        return fitted;
      },
      nearest);
}

closed_form::Solutions Solve(const Model& model, const Frame& target) {
  return std::visit([&](const auto& arm) { return Solve(arm, target); }, model);
}

Frame Forward(const Model& model, const Joints& joints) {
  return std::visit([&](const auto& arm) { return Forward(arm, joints.data()); }, model);
}

TipDifference DifferenceOf(const Member& member, const ArmDescription& arm, int joint_sets) {
  return std::visit([&](const auto& a) { return Difference(a, arm, joint_sets); }, member);
}

}  // namespace qal
