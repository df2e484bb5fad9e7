#include <gtest/gtest.h>

#include <cmath>

#include "arms.h"
#include "qal/model/rotations.h"
#include "qal/plan/line.h"
#include "qal/study/reach.h"

namespace qal {
namespace {

class ReachLine : public testing::TestWithParam<const char*> {
 protected:
  Arm arm_ = *Arm::FromDescription(Describe(GetParam()));
};

// Joints in which `PlanLine` arrives at a pose, from every admissible solution of where the
// approach begins; and how far they stay from their limits on the way, looked at 200 times.
std::vector<std::pair<Joints, double>> Arrivals(const Arm& arm, const Pose& begin,
                                                const Pose& end) {
  std::vector<std::pair<Joints, double>> arrivals;
  const auto starts = Inverse(arm, begin, {});
  if (!starts) return arrivals;
  for (const Candidate& start : *starts) {
    if (start.refusal) continue;
    const auto motion = PlanLine(arm, {start.joints, begin}, end);
    if (!motion) continue;
    double margin = 10;
    for (int i = 0; i <= 200; ++i) {
      const Joints joints = motion->At(motion->duration_s() * i / 200).joints;
      for (size_t j = 0; j < 6; ++j) {
        const JointModel& joint = arm.joints()[j];
        margin = std::min(
            margin, std::min(joints[j] - joint.lower_rad.value, joint.upper_rad.value - joints[j]));
      }
    }
    arrivals.emplace_back(motion->At(motion->duration_s()).joints, margin);
  }
  return arrivals;
}

// Each cell's answer is that of `PlanLine` from where the approaches begin: along the tool's z
// axis, which leads out of reach, into joint limits and past singularities, and straight down.
TEST_P(ReachLine, CountsWhatPlanLineArrivesIn) {
  ReachStudy study;
  study.box_min = {0.25, -0.5, 0.1};
  study.box_max = {0.85, 0.3, 0.9};
  study.step_m = 0.4;
  study.directions = 9;
  study.line_m = 0.3;
  size_t lost = 0;
  for (const auto& direction : {std::optional<Vec3>(), std::optional<Vec3>({0, 0, -2})}) {
    study.line_direction = direction;
    const ReachGrid grid = *GridOf(study);
    const std::vector<Quat> tried = *OrientationsOf(study);
    const std::vector<ReachCell> cells = *Reach(arm_, study, 0, grid.cells(), {2});
    for (size_t i = 0; i < cells.size(); ++i) {
      ReachCell expected;
      double best = -10;
      std::vector<std::pair<Joints, double>> all;
      for (const Quat& q : tried) {
        const Quat z = q * Quat{0, 0, 0, 1} * Conjugate(q);
        const Vec3 along = direction ? Vec3{0, 0, -1} : Vec3{z.x, z.y, z.z};
        const Vec3 at = grid.Centre(i);
        const Pose end = {at, q};
        const Pose begin = {{at.x - 0.3 * along.x, at.y - 0.3 * along.y, at.z - 0.3 * along.z}, q};
        const auto arrivals = Arrivals(arm_, begin, end);
        if (!arrivals.empty()) ++expected.directions;
        expected.solutions += static_cast<uint32_t>(arrivals.size());
        for (const auto& arrival : arrivals) best = std::max(best, arrival.second);
        all.insert(all.end(), arrivals.begin(), arrivals.end());
        if (const auto ends = Inverse(arm_, end, {})) lost += ends->size() - arrivals.size();
      }
      ASSERT_EQ(expected.directions, cells[i].directions) << i;
      ASSERT_EQ(expected.solutions, cells[i].solutions) << i;
      if (expected.directions == 0) continue;
      EXPECT_NEAR(best, cells[i].margin_rad, 1e-3) << i;
      // One of the best arrivals, of which there may be several.
      EXPECT_TRUE(std::any_of(all.begin(), all.end(), [&](const auto& arrival) {
        return arrival.second > best - 1e-3 &&
               LargestDifference(arrival.first, cells[i].joints) < 1e-6;
      })) << i;
    }
  }
  EXPECT_GT(lost, 100U);
}

INSTANTIATE_TEST_SUITE_P(Arms, ReachLine,
                         testing::Values("reference.urdf", "service_parallel.urdf"), ArmName);

}  // namespace
}  // namespace qal
