#include "family.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>
#include <string>
#include <vector>

#include "../common/error.h"
#include "lines.h"

namespace qal::tools {

namespace {

// With a shorter upper arm or forearm there is no place that the arm could reach in two ways.
constexpr double kShortestLinkM = 1e-3;

std::string AngleText(double rad) {
  return rad < 0.01 ? fmt::format("{:.3g} rad", rad)
                    : fmt::format("{:.4g} degrees", rad * 180 / kPi);
}

// What keeps an arm out of a family. Axes are counted from 1.
class Deviations {
 public:
  explicit Deviations(const Axes& axes) : axes_(axes) {}

  void ExpectParallel(size_t a, size_t b) {
    const double off = AngleBetween(axes_[a - 1], axes_[b - 1]);
    if (off <= kAxisAngleToleranceRad) return;
    found_.push_back(fmt::format("axes {} and {} are {} off parallel", a, b, AngleText(off)));
  }

  void ExpectRightAngle(size_t a, size_t b) {
    const double off = kPi / 2 - AngleBetween(axes_[a - 1], axes_[b - 1]);
    if (off <= kAxisAngleToleranceRad) return;
    found_.push_back(fmt::format("axes {} and {} are {} off a right angle", a, b, AngleText(off)));
  }

  void ExpectMeeting(const char* what, double distance) {
    if (distance <= kAxisDistanceToleranceM) return;
    found_.push_back(fmt::format("{} are {:.3g} m apart", what, distance));
  }

  void ExpectLink(const char* what, double length) {
    if (length >= kShortestLinkM) return;
    found_.push_back(fmt::format("{} are only {:.3g} m apart", what, length));
  }

  bool None() const { return found_.empty(); }
  std::string Text() const { return fmt::format("{}", fmt::join(found_, ", ")); }

 private:
  const Axes& axes_;
  std::vector<std::string> found_;
};

Deviations FromParallelAxes(const Axes& axes) {
  Deviations off(axes);
  off.ExpectRightAngle(1, 2);
  off.ExpectParallel(2, 3);
  off.ExpectParallel(3, 4);
  off.ExpectRightAngle(4, 5);
  off.ExpectRightAngle(5, 6);
  if (!off.None()) return off;  // without right angles there is no place where axes meet
  off.ExpectMeeting("axes 5 and 6", MeetingOf(axes[4], axes[5]).distance);
  off.ExpectLink("axes 2 and 3", DistanceFrom(axes[1], axes[2].point));
  off.ExpectLink("axes 3 and 4", DistanceFrom(axes[2], axes[3].point));
  return off;
}

Deviations FromSphericalWrist(const Axes& axes) {
  Deviations off(axes);
  off.ExpectRightAngle(1, 2);
  off.ExpectParallel(2, 3);
  off.ExpectRightAngle(4, 5);
  off.ExpectRightAngle(5, 6);
  if (!off.None()) return off;
  const Meeting centre = MeetingOf(axes[4], axes[3]);
  off.ExpectMeeting("axes 4 and 5", centre.distance);
  off.ExpectMeeting("axis 6 and the point where axes 4 and 5 meet",
                    DistanceFrom(axes[5], centre.point));
  off.ExpectLink("axes 2 and 3", DistanceFrom(axes[1], axes[2].point));
  off.ExpectLink("axis 3 and the wrist's centre", DistanceFrom(axes[2], centre.point));
  return off;
}

std::string AnglesFound(const Axes& axes) {
  std::vector<std::string> found;
  for (size_t j = 0; j + 1 < axes.size(); ++j) {
    const double degrees = AngleBetween(axes[j], axes[j + 1]) * 180 / kPi;
    found.push_back(fmt::format("{}-{} {:g}", j + 1, j + 2, std::round(degrees * 1e4) / 1e4));
  }
  return fmt::format("{}", fmt::join(found, ", "));
}

}  // namespace

Model FindFamily(const Arm& arm) {
  const Axes axes = AxesAtZero(arm);
  const Deviations parallel = FromParallelAxes(axes);
  if (parallel.None()) return MakeParallelAxes(arm, axes);
  const Deviations spherical = FromSphericalWrist(axes);
  if (spherical.None()) return MakeSphericalWrist(arm, axes);
  throw Failure(fmt::format(
      "no closed form for this arm. Not a spherical wrist: {}. Not three parallel axes: {}. Angles "
      "between axes: {} degrees (tolerance {} rad, {} m).{}",
      spherical.Text(), parallel.Text(), AnglesFound(axes), kAxisAngleToleranceRad,
      kAxisDistanceToleranceM,
      arm.rounded_angles == 0
          ? ""
          : fmt::format(" Angles that look rounded, as 1.5708 does: {}; --exact-angles reads them "
                        "as the multiples of 15 degrees that they stand for.",
                        arm.rounded_angles)));
}

}  // namespace qal::tools
