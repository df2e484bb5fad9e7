#include "step_path.h"

#include <algorithm>

namespace qal {

double StepPath::AlongAt(double s, size_t section) const {
  const double begin = path.sections[section].begin;
  const double end =
      section + 1 < path.sections.size() ? path.sections[section + 1].begin : path.end();
  const auto& [step, from, to] = stretches[section];
  return end > begin ? from + (to - from) * std::clamp((s - begin) / (end - begin), 0.0, 1.0) : to;
}

void StepPath::CutAfter(double s) {
  path.joints.CutAfter(s);
  const size_t section = path.SectionAt(s);
  const size_t keep = path.sections[section].begin < s || section == 0 ? section + 1 : section;
  stretches[keep - 1].end_along = AlongAt(s, keep - 1);
  path.sections.resize(keep);
  stretches.resize(keep);
  corners.erase(std::remove_if(corners.begin(), corners.end(),
                               [s](const PlacedCorner& corner) { return corner.begin >= s; }),
                corners.end());
}

void StepPath::CutBefore(double s) {
  const size_t section = path.SectionAt(s);
  const double along = AlongAt(s, section);
  path.joints.CutBefore(s);
  const auto gone = static_cast<std::ptrdiff_t>(section);
  path.sections.erase(path.sections.begin(), path.sections.begin() + gone);
  stretches.erase(stretches.begin(), stretches.begin() + gone);
  path.sections.front().begin = s;
  stretches.front().begin_along = along;
  corners.erase(std::remove_if(corners.begin(), corners.end(),
                               [s](const PlacedCorner& corner) { return corner.begin < s; }),
                corners.end());
}

}  // namespace qal
