#include "units.h"

#include <fmt/format.h>
#include <qal/model/chain.h>

#include <cmath>

#include "error.h"
#include "numbers.h"

namespace qal::io {

double ExactAngle(double written) {
  const double multiple = std::round(written / (kPi / 12));
  const double exact = multiple * kPi / 12;
  if (multiple == 0 || exact == written) return written;
  const std::string text = FormatNumber(std::fabs(written));
  const size_t point = text.find('.');
  if (point == std::string::npos || text.find('e') != std::string::npos) return written;
  const double last_digit = std::pow(10.0, -static_cast<double>(text.size() - point - 1));
  const bool stands_for_it = last_digit <= 1e-4 && std::fabs(written - exact) < last_digit;
  return stands_for_it ? exact : written;
}

double FileUnits::Radians(double written, const std::string& where) {
  if (options_.degrees) return written * kPi / 180;
  if (std::fabs(written) > 2 * kPi + 1e-6) {
    throw UsageError(fmt::format("{}: {} rad is more than a turn; are these degrees?", where,
                                 FormatNumber(written)));
  }
  const double exact = ExactAngle(written);
  if (exact != written) ++rounded_angles_;
  return options_.exact_angles ? exact : written;
}

Vec3 FileUnits::Radians(const Vec3& written, const std::string& where) {
  return {Radians(written.x, where), Radians(written.y, where), Radians(written.z, where)};
}

void CheckScale(const ArmDescription& arm, const std::string& path) {
  // From a finger's length to a small crane's: outside it is another unit.
  constexpr double kShortestM = 0.05;
  constexpr double kLongestM = 20.0;
  const double reach = LongestReach(arm);
  if (reach >= kShortestM && reach <= kLongestM) return;
  throw UsageError(fmt::format("{}: the arm is {:.4g} m long; {} to {} m are expected{}", path,
                               reach, kShortestM, kLongestM,
                               reach > kLongestM ? " (--mm reads millimetres)" : ""));
}

}  // namespace qal::io
