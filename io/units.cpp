#include "units.h"

#include <fmt/format.h>
#include <qal/model/chain.h>

#include <cmath>

#include "error.h"
#include "numbers.h"

namespace qal::io {

double FileUnits::Radians(double written, const std::string& where) const {
  if (options_.degrees) return written * kPi / 180;
  if (std::fabs(written) > 2 * kPi + 1e-6) {
    throw UsageError(fmt::format("{}: {} rad is more than a turn; are these degrees?", where,
                                 FormatNumber(written)));
  }
  return written;
}

Vec3 FileUnits::Radians(const Vec3& written, const std::string& where) const {
  return {Radians(written.x, where), Radians(written.y, where), Radians(written.z, where)};
}

void CheckScale(const ArmDescription& arm, const std::string& path, const ReadOptions& options) {
  // From a finger's length to a small crane's: outside it is another unit.
  constexpr double kShortestM = 0.05;
  constexpr double kLongestM = 20.0;
  const double reach = LongestReach(arm);
  if (reach >= kShortestM && reach <= kLongestM) return;
  const char* remedy = "";
  if (reach > kLongestM && !options.millimetres) remedy = " (--mm reads millimetres)";
  if (reach < kShortestM && options.millimetres) remedy = " (without --mm lengths are metres)";
  throw UsageError(fmt::format("{}: the arm is {:.4g} m long; {} to {} m are expected{}", path,
                               reach, kShortestM, kLongestM, remedy));
}

}  // namespace qal::io
