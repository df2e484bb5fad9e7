#include "family_text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>
#include <vector>

namespace qal::io {

namespace {

double Degrees(double rad) { return rad * 180 / 3.14159265358979323846; }

std::string AngleText(double rad) {
  return rad < 0.01 ? fmt::format("{:.3g} rad", rad) : fmt::format("{:.4g} degrees", Degrees(rad));
}

std::string AxesText(const Deviation& deviation) {
  const int a = deviation.axis_a;
  const int b = deviation.axis_b;
  if (b != kWristCentre) return fmt::format("axes {} and {}", a, b);
  return deviation.kind == Deviation::Kind::kNotMeeting
             ? fmt::format("axis {} and the point where axes 4 and 5 meet", a)
             : fmt::format("axis {} and the wrist's centre", a);
}

std::string DeviationText(const Deviation& deviation) {
  const std::string axes = AxesText(deviation);
  switch (deviation.kind) {
    case Deviation::Kind::kNotParallel:
      return fmt::format("{} are {} off parallel", axes, AngleText(deviation.amount));
    case Deviation::Kind::kNotRightAngle:
      return fmt::format("{} are {} off a right angle", axes, AngleText(deviation.amount));
    case Deviation::Kind::kNotMeeting:
      return fmt::format("{} are {:.3g} m apart", axes, deviation.amount);
    case Deviation::Kind::kTooClose:
      break;
  }
  return fmt::format("{} are only {:.3g} m apart", axes, deviation.amount);
}

std::string DeviationsText(const std::vector<Deviation>& deviations) {
  std::vector<std::string> texts;
  for (const Deviation& deviation : deviations) texts.push_back(DeviationText(deviation));
  return fmt::format("{}", fmt::join(texts, ", "));
}

std::string AnglesFound(const FamilyReport& report) {
  std::vector<std::string> texts;
  for (size_t j = 0; j < report.axis_angles_rad.size(); ++j) {
    const double degrees = Degrees(report.axis_angles_rad[j]);
    texts.push_back(fmt::format("{}-{} {:g}", j + 1, j + 2, std::round(degrees * 1e4) / 1e4));
  }
  return fmt::format("{}", fmt::join(texts, ", "));
}

}  // namespace

std::string SingularText(const FamilyReport& report) {
  // What people see most: a gripper's joint in line with the last one, too many joints in a plane.
  constexpr double kParallelRad = 1e-3;
  constexpr double kOneLineM = 1e-4;
  std::string cause;
  size_t parallel = 0;
  for (size_t j = 0; j < report.axis_angles_rad.size(); ++j) {
    parallel = report.axis_angles_rad[j] < kParallelRad ? parallel + 1 : 0;
    if (parallel == 3) cause += fmt::format(" Axes {} to {} are parallel.", j - 1, j + 2);
    if (parallel > 0 && report.axis_distances_m[j] < kOneLineM) {
      cause += fmt::format(" Axes {} and {} are one line.", j + 1, j + 2);
    }
  }
  return fmt::format(
      "check which six joints are the arm's: with these its tool lacks a way to move wherever it "
      "is, and its poses have no solution or infinitely many.{} Angles between axes: {} degrees.",
      cause, AnglesFound(report));
}

std::string FamiliesMissedText(const FamilyReport& report) {
  std::vector<std::string> texts;
  for (const FamilyFit& fit : report.fits) {
    texts.push_back(
        fmt::format("not {} ({})", FamilyName(fit.family), DeviationsText(fit.deviations)));
  }
  return fmt::format("{}", fmt::join(texts, ", "));
}

std::string NoFamilyText(const FamilyReport& report) {
  return fmt::format("leave --nominal out: the arm is near no family; {}",
                     FamiliesMissedText(report));
}

std::string DeviationText(const AxisDeviation& deviation) {
  return fmt::format("{:.3g} degrees and {:.3g} mm", Degrees(deviation.angle_rad),
                     deviation.distance_m * 1000);
}

}  // namespace qal::io
