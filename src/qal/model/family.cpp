#include "family.h"

#include <utility>

#include "lines.h"

namespace qal {

namespace {

// With a shorter upper arm or forearm there is no place that the arm could reach in two ways.
constexpr double kShortestLinkM = 1e-3;

// Collects what keeps an arm out of a family. Axes are counted from 1.
class Conditions {
 public:
  explicit Conditions(const Axes& axes) : axes_(axes) {}

  void ExpectParallel(int a, int b) {
    const double off = AngleBetween(Axis(a).direction, Axis(b).direction);
    if (off <= kAxisAngleToleranceRad) return;
    deviations_.push_back({Deviation::Kind::kNotParallel, a, b, off});
  }

  void ExpectRightAngle(int a, int b) {
    const double off = kPi / 2 - AngleBetween(Axis(a).direction, Axis(b).direction);
    if (off <= kAxisAngleToleranceRad) return;
    deviations_.push_back({Deviation::Kind::kNotRightAngle, a, b, off});
  }

  void ExpectMeeting(int a, int b, double distance) {
    if (distance <= kAxisDistanceToleranceM) return;
    deviations_.push_back({Deviation::Kind::kNotMeeting, a, b, distance});
  }

  void ExpectLink(int a, int b, double length) {
    if (length >= kShortestLinkM) return;
    deviations_.push_back({Deviation::Kind::kTooClose, a, b, length});
  }

  const Line& Axis(int number) const { return axes_[static_cast<size_t>(number - 1)]; }
  bool AllMet() const { return deviations_.empty(); }
  std::vector<Deviation> deviations() && { return std::move(deviations_); }

 private:
  const Axes& axes_;
  std::vector<Deviation> deviations_;
};

std::vector<Deviation> FromParallelAxes(const Axes& axes) {
  Conditions conditions(axes);
  conditions.ExpectRightAngle(1, 2);
  conditions.ExpectParallel(2, 3);
  conditions.ExpectParallel(3, 4);
  conditions.ExpectRightAngle(4, 5);
  conditions.ExpectRightAngle(5, 6);
  if (conditions.AllMet()) {
    conditions.ExpectMeeting(5, 6, MeetingOf(axes[4], axes[5]).distance);
    conditions.ExpectLink(2, 3, DistanceFrom(axes[1], axes[2].point));
    conditions.ExpectLink(3, 4, DistanceFrom(axes[2], axes[3].point));
  }
  return std::move(conditions).deviations();
}

std::vector<Deviation> FromSphericalWrist(const Axes& axes) {
  Conditions conditions(axes);
  conditions.ExpectRightAngle(1, 2);
  conditions.ExpectParallel(2, 3);
  conditions.ExpectRightAngle(4, 5);
  conditions.ExpectRightAngle(5, 6);
  if (conditions.AllMet()) {
    const Meeting centre = MeetingOf(axes[4], axes[3]);
    conditions.ExpectMeeting(4, 5, centre.distance);
    conditions.ExpectMeeting(6, kWristCentre, DistanceFrom(axes[5], centre.point));
    conditions.ExpectLink(2, 3, DistanceFrom(axes[1], axes[2].point));
    conditions.ExpectLink(3, kWristCentre, DistanceFrom(axes[2], centre.point));
  }
  return std::move(conditions).deviations();
}

}  // namespace

FamilyReport ExamineFamilies(const ArmDescription& arm) {
  const Axes axes = AxesOf(arm);
  FamilyReport report = {FromSphericalWrist(axes), FromParallelAxes(axes), {}, arm.rounded_angles};
  for (size_t j = 0; j + 1 < axes.size(); ++j) {
    report.axis_angles_rad[j] = AngleBetween(axes[j].direction, axes[j + 1].direction);
  }
  return report;
}

}  // namespace qal
