#include "family.h"

#include <algorithm>
#include <cmath>

#include "described_chain.h"
#include "general_arm.h"
#include "nearest_member.h"

namespace qal {

namespace {

using Kind = AxisCondition::Kind;

// With a shorter upper arm or forearm there is no place that the arm could reach in two ways.
constexpr double kShortestLinkM = 1e-3;

bool IsDistance(const AxisCondition& condition) {
  return condition.kind == Kind::kMeeting || condition.kind == Kind::kThroughCentre;
}

Deviation DeviationFrom(const AxisCondition& condition, double amount) {
  const int a = static_cast<int>(condition.a);
  const int b = static_cast<int>(condition.b);
  switch (condition.kind) {
    case Kind::kParallel:
      return {Deviation::Kind::kNotParallel, a, b, amount};
    case Kind::kRightAngle:
      return {Deviation::Kind::kNotRightAngle, a, b, amount};
    case Kind::kMeeting:
    case Kind::kThroughCentre:
      break;
  }
  return {Deviation::Kind::kNotMeeting, a, b, amount};
}

// Conditions that the axes miss by more than two of them may be off together: angles first, and
// distances only where the angles are right.
std::vector<Deviation> Missed(const Axes& axes, const AxisConditions& conditions) {
  std::vector<Deviation> missed;
  for (const bool distances : {false, true}) {
    if (!missed.empty()) break;
    const double most = 2 * (distances ? kFamilyDistanceToleranceM : kFamilyAngleToleranceRad);
    for (const AxisCondition& condition : conditions) {
      if (IsDistance(condition) != distances) continue;
      const double amount = Unmet(axes, condition);
      if (!(amount <= most)) missed.push_back(DeviationFrom(condition, amount));
    }
  }
  return missed;
}

// The condition that is missed by the largest part of the tolerance.
Deviation WorstOf(const Axes& axes, const AxisConditions& conditions) {
  const auto part = [&](const AxisCondition& condition) {
    return Unmet(axes, condition) /
           (IsDistance(condition) ? kFamilyDistanceToleranceM : kFamilyAngleToleranceRad);
  };
  const auto worst = std::max_element(
      conditions.begin(), conditions.end(),
      [&](const AxisCondition& a, const AxisCondition& b) { return part(a) < part(b); });
  return DeviationFrom(*worst, Unmet(axes, *worst));
}

std::vector<Deviation> ShortLinks(Family family, const Axes& axes) {
  std::vector<Deviation> close;
  const auto expect = [&](int a, int b, double length) {
    if (!(length >= kShortestLinkM)) close.push_back({Deviation::Kind::kTooClose, a, b, length});
  };
  expect(2, 3, DistanceFrom(axes[1], axes[2].point));
  if (family == Family::kThreeParallelAxes) {
    expect(3, 4, DistanceFrom(axes[2], axes[3].point));
  } else {
    expect(3, kWristCentre, DistanceFrom(axes[2], MeetingOf(axes[4], axes[3]).point));
  }
  return close;
}

FamilyFit Compare(Family family, const Axes& axes) {
  const AxisConditions& conditions = ConditionsOf(family);
  FamilyFit fit = {family, Missed(axes, conditions), {}};
  if (!fit.deviations.empty()) return fit;
  const Axes nearest = NearestMember(axes, conditions);
  fit.nearest = DeviationOf(axes, nearest);
  // Written so that NaN is too far.
  if (!(fit.nearest.angle_rad <= kFamilyAngleToleranceRad &&
        fit.nearest.distance_m <= kFamilyDistanceToleranceM)) {
    fit.deviations.push_back(WorstOf(axes, conditions));
  } else {
    fit.deviations = ShortLinks(family, nearest);
  }
  return fit;
}

}  // namespace

const char* FamilyName(Family family) {
  switch (family) {
    case Family::kThreeParallelAxes:
      return "three parallel axes";
    case Family::kSphericalWrist:
      return "spherical wrist";
    case Family::kOffsetWrist:
      return "offset wrist";
    case Family::kGeneral:
      break;
  }
  return "no family";
}

const AxisConditions& ConditionsOf(Family family) {
  static const AxisConditions kThreeParallelAxes = {
      {Kind::kRightAngle, 1, 2}, {Kind::kParallel, 2, 3},   {Kind::kParallel, 3, 4},
      {Kind::kRightAngle, 4, 5}, {Kind::kRightAngle, 5, 6}, {Kind::kMeeting, 5, 6}};
  static const AxisConditions kSphericalWrist = {
      {Kind::kRightAngle, 1, 2}, {Kind::kParallel, 2, 3}, {Kind::kRightAngle, 4, 5},
      {Kind::kRightAngle, 5, 6}, {Kind::kMeeting, 4, 5},  {Kind::kThroughCentre, 6}};
  static const AxisConditions kOffsetWrist = {{Kind::kRightAngle, 1, 2}, {Kind::kParallel, 2, 3},
                                              {Kind::kRightAngle, 3, 4}, {Kind::kRightAngle, 4, 5},
                                              {Kind::kRightAngle, 5, 6}, {Kind::kMeeting, 4, 5}};
  switch (family) {
    case Family::kThreeParallelAxes:
      return kThreeParallelAxes;
    case Family::kSphericalWrist:
      return kSphericalWrist;
    case Family::kOffsetWrist:
      return kOffsetWrist;
    case Family::kGeneral:
      break;
  }
  static const AxisConditions kNone;
  return kNone;
}

const FamilyFit* FamilyReport::Fitting() const {
  const auto fitting = std::find_if(fits.begin(), fits.end(),
                                    [](const FamilyFit& fit) { return fit.deviations.empty(); });
  return fitting == fits.end() ? nullptr : &*fitting;
}

FamilyReport ExamineFamilies(const ArmDescription& arm) {
  const Axes axes = AxesOf(arm);
  FamilyReport report = {};
  for (const Family family :
       {Family::kThreeParallelAxes, Family::kSphericalWrist, Family::kOffsetWrist}) {
    report.fits.push_back(Compare(family, axes));
  }
  for (size_t j = 0; j + 1 < axes.size(); ++j) {
    report.axis_angles_rad[j] = AngleBetween(axes[j].direction, axes[j + 1].direction);
    report.axis_distances_m[j] = DistanceBetween(axes[j], axes[j + 1]);
  }
  report.singular_everywhere = IsSingularEverywhere(MakeChain(arm, axes[4].point));
  return report;
}

}  // namespace qal
