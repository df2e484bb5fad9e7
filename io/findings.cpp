#include "findings.h"

#include <algorithm>
#include <utility>

namespace qal::io {

Findings FindingsOf(const LoadedArm& loaded, LocatedTrajectory trajectory, const Limits& limits,
                    bool strict) {
  Joints jerk;
  std::transform(limits[kJointJerk].begin(), limits[kJointJerk].end(), jerk.begin(),
                 [](const Bound& limit) { return limit.value; });
  Findings findings = {loaded, std::move(trajectory), limits, {}, {}, {}};
  findings.metrics = Measure(findings.trajectory.samples, loaded.arm, jerk);
  for (const Violation& violation : FindViolations(findings.metrics, limits)) {
    const bool note = violation.limit.origin == Origin::kAssumed && !strict;
    (note ? findings.notes : findings.violations).push_back(violation);
  }
  return findings;
}

size_t JointOf(const Findings& findings, size_t metric, size_t entry) {
  if (kMetrics[metric].per_joint) return entry + 1;
  const std::optional<Peak>& peak = findings.metrics[metric][entry];
  return peak && peak->value > 0 ? static_cast<size_t>(peak->joint + 1) : 0;
}

}  // namespace qal::io
