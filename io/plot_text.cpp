#include "plot_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace qal::io {

namespace {

constexpr size_t kAllJoints = 6;

// "1-3, 5".
std::string JointsText(const std::vector<int>& joints) {
  std::string text;
  for (size_t i = 0; i < joints.size();) {
    size_t last = i;
    while (last + 1 < joints.size() && joints[last + 1] == joints[last] + 1) ++last;
    text += fmt::format("{}{}", text.empty() ? "" : ", ", joints[i] + 1);
    if (last > i) text += fmt::format("{}{}", last > i + 1 ? "\u2013" : ", ", joints[last] + 1);
    i = last + 1;
  }
  return text;
}

std::string ValueText(double value) {
  return fmt::format("{}{:.4g}", value < 0 ? "\u2212" : "", std::fabs(value));
}

bool Mirrored(const PlotLimit& a, const PlotLimit& b) {
  return a.joints == b.joints && a.assumed == b.assumed && a.value == -b.value && a.value != 0;
}

}  // namespace

std::string LimitsText(const PlotPanel& panel) {
  std::string text;
  size_t said = 0;
  for (size_t i = 0; i < panel.limits.size(); ++i) {
    const PlotLimit& limit = panel.limits[i];
    const auto mirrors = [&limit](const PlotLimit& other) { return Mirrored(limit, other); };
    const auto begin = panel.limits.begin();
    const auto here = begin + static_cast<std::ptrdiff_t>(i);
    if (limit.joints.empty() && limit.value == 0) continue;  // no number is needed
    if (std::any_of(begin, here, mirrors)) continue;         // said with the other one
    const bool both = std::any_of(here, panel.limits.end(), mirrors);
    text += fmt::format("{}{}{}", text.empty() ? "" : ", ", both ? "\u00b1" : "",
                        ValueText(both ? std::fabs(limit.value) : limit.value));
    ++said;
    if (!limit.joints.empty() && limit.joints.size() < kAllJoints) {
      text += fmt::format(" ({})", JointsText(limit.joints));
    }
    if (limit.assumed) text += " assumed";
  }
  if (said > 0) text.insert(0, said == 1 ? "limit " : "limits ");
  return text;
}

}  // namespace qal::io
