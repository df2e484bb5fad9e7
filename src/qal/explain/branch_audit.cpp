#include <algorithm>
#include <limits>

#include "../plan/joint_limits.h"
#include "causes.h"
#include "explain.h"

namespace qal {

namespace {

// Looks at a motion, as often as a controller does but not without end.
void Measure(const Arm& arm, const LineMotion& motion, BranchAudit& audit) {
  constexpr double kMostLooks = 1000;
  audit.duration_s = motion.duration_s();
  audit.smallest_margin_rad = std::numeric_limits<double>::infinity();
  audit.smallest_singular_value = std::numeric_limits<double>::infinity();
  const double cycles = std::ceil(motion.duration_s() / arm.cycle_s().value);
  const int looks = static_cast<int>(std::clamp(cycles, 1.0, kMostLooks));
  for (int i = 0; i <= looks; ++i) {
    const Joints joints = motion.At(motion.duration_s() * i / looks).joints;
    for (size_t j = 0; j < joints.size(); ++j) {
      const double margin = -Outside(arm.joints()[j], joints[j]);
      if (!(margin < audit.smallest_margin_rad)) continue;
      audit.smallest_margin_rad = margin;
      audit.joint = static_cast<int>(j);
    }
    const auto distances = DistanceToSingularities(arm, joints);
    if (!distances) continue;
    audit.smallest_singular_value =
        std::min(audit.smallest_singular_value, distances->smallest_singular_value);
  }
}

}  // namespace

std::vector<BranchAudit> AuditBranches(const Arm& arm, const State& from, const Pose& to,
                                       const LineLimits& limits) {
  std::vector<BranchAudit> audits;
  const auto start = Forward(arm, from.joints);
  if (!start) return audits;
  const auto candidates = Inverse(arm, *start, from.joints);
  if (!candidates) return audits;
  for (const Candidate& candidate : *candidates) {
    if (candidate.refusal) continue;
    BranchAudit audit = {candidate.joints, BranchOf(arm, candidate.joints)};
    const auto motion = PlanLine(arm, {candidate.joints, *start}, to, limits);
    if (motion) {
      Measure(arm, *motion, audit);
    } else {
      audit.failure = motion.error();
    }
    audits.push_back(std::move(audit));
  }
  std::stable_sort(audits.begin(), audits.end(), [](const BranchAudit& a, const BranchAudit& b) {
    if (a.failure.has_value() != b.failure.has_value()) return b.failure.has_value();
    return a.failure ? a.failure->along > b.failure->along : a.duration_s < b.duration_s;
  });
  return audits;
}

}  // namespace qal
