#include "../../io/metrics.h"

#include <gtest/gtest.h>
#include <qal/solve/kinematics.h>

#include <cmath>

#include "../../io/finite_differences.h"

namespace qal::io {
namespace {

// One second apart, joint 1 at 0, 0.1, 0.3, 0.3 rad, joint 4 at 0, 0, 0, -0.2 and joint 6 at 0,
// 0.1, 0.24, 0.33. The poses are those of the joints, but for sample 2: 3 mm higher, turned by 0.02
// rad about z, and -q for q.
FileTrajectory FourSamples() {
  FileTrajectory trajectory = {{0.0, {0.0, 0.3, -0.2, 0.0, 0.5, 0.0}, {}},
                               {1.0, {0.1, 0.3, -0.2, 0.0, 0.5, 0.1}, {}},
                               {2.0, {0.3, 0.3, -0.2, 0.0, 0.5, 0.24}, {}},
                               {3.0, {0.3, 0.3, -0.2, -0.2, 0.5, 0.33}, {}}};
  for (FileSample& sample : trajectory)
    sample.pose = Forward(Arm::Reference(), sample.joints).value();
  auto& [position, q] = *trajectory[2].pose;
  position.z += 0.003;
  const double c = -std::cos(0.01);
  const double s = -std::sin(0.01);
  q = {c * q.w - s * q.z, c * q.x - s * q.y, c * q.y + s * q.x, c * q.z + s * q.w};
  return trajectory;
}

struct Expected {
  MetricIndex metric;
  size_t entry;
  double value;
  size_t sample;
};

void ExpectPeaks(const FileTrajectory& trajectory, const std::vector<Expected>& expected) {
  const auto metrics = Measure(trajectory, Arm::Reference());
  for (const auto& [metric, entry, value, sample] : expected) {
    const std::optional<Peak>& peak = metrics[metric].at(entry);
    SCOPED_TRACE(testing::Message() << kMetrics[metric].key << ", entry " << entry);
    ASSERT_TRUE(peak);
    EXPECT_NEAR(value, peak->value, 1e-12);
    EXPECT_EQ(sample, peak->sample);
  }
}

// Between standstills, joint 1 moves at 0.1, 0.2, 0 rad/s: changes of 0.1, 0.1, -0.2, 0 at the
// samples, which change by 0.1, 0, -0.3, 0.2, 0. Joint 4 at 0, 0, -0.2: 0, 0, -0.2, 0.2, and 0, 0,
// -0.2, 0.4, -0.2. Joint 6 at 0.1, 0.14, 0.09: 0.1, 0.04, -0.05, -0.09, and 0.1, -0.06, -0.09,
// -0.04, 0.09.
TEST(Measure, FindsThePeaksAndWhereTheyAre) {
  const double rpm_per_rad_s = 60 / (2 * M_PI);
  ExpectPeaks(FourSamples(), {{kJointSpeed, 0, 0.2, 2},
                              {kJointSpeed, 1, 0.0, 0},
                              {kJointSpeed, 3, 0.2, 3},
                              {kJointAcceleration, 0, 0.2, 2},
                              {kJointAcceleration, 3, 0.2, 2},
                              {kJointJerk, 0, 0.3, 2},
                              {kJointJerk, 3, 0.4, 3},
                              {kJointJerk, 5, 0.1, 0},
                              {kMotorSpeed, 0, 0.2 * 363 * rpm_per_rad_s, 2},
                              {kMotorSpeed, 3, 0.2 * 303 * rpm_per_rad_s, 3},
                              {kJointStep, 0, 0.2, 2},
                              {kPositionError, 0, 0.003, 2},
                              {kOrientationError, 0, 0.02, 2},
                              {kRepeatedTimes, 0, 0.0, 0},
                              {kBackwardTimes, 0, 0.0, 0}});
}

// By its leading joint, the first step is three times, the last twice as large as the other one.
TEST(Measure, HoldsTheEndStepsAgainstTheOthers) {
  ExpectPeaks({{0, {0, 0}, {}}, {1, {-0.3, 0.1}, {}}, {2, {-0.3, 0.2}, {}}, {3, {-0.3, 0.4}, {}}},
              {{kFirstStep, 0, 0.3, 1},
               {kOtherStep, 0, 0.1, 2},
               {kLastStep, 0, 0.2, 3},
               {kEndStep, 0, 3.0, 1}});
}

// The tool goes 3 cm along x in even steps, 4 mm off the line at sample 1; then it overshoots the
// end by 2 cm in 2 s and comes back: that is off the line as well.
TEST(Measure, TakesTheToolFromTheFile) {
  const auto at = [](double time_s, double x, double y) {
    return FileSample{time_s, {}, Pose{{x, y, 0}, {1, 0, 0, 0}}};
  };
  FileTrajectory trajectory = {at(0, 0, 0), at(1, 0.01, 0.004), at(2, 0.02, 0), at(4, 0.05, 0),
                               at(5, 0.03, 0)};
  ExpectPeaks(trajectory, {{kLineDeviation, 0, 0.02, 3}, {kToolSpeed, 0, 0.02, 4}});
  trajectory.resize(3);
  ExpectPeaks(trajectory, {{kLineDeviation, 0, 0.004, 1}});
}

// Rates leave out the repeated and the backward interval: 0.1 rad/s in the first and the last
// remain.
TEST(Measure, CountsTimesThatDoNotIncrease) {
  const FileTrajectory trajectory = {
      {0, {0.0}, {}}, {1, {0.1}, {}}, {1, {0.2}, {}}, {0.5, {0.3}, {}}, {1.5, {0.4}, {}}};
  ExpectPeaks(trajectory,
              {{kRepeatedTimes, 0, 1.0, 2}, {kBackwardTimes, 0, 1.0, 3}, {kJointSpeed, 0, 0.1, 4}});
  EXPECT_EQ(2u, FindViolations(Measure(trajectory, Arm::Reference()), DefaultLimits()).size());
}

// Squares of these positions are infinite, and the deviation infinite over infinite; so is, on the
// spot and back, the change from an infinite speed to its opposite.
TEST(Measure, TakesWhatCannotBeComparedForBeyondEveryLimit) {
  const auto at = [](double time_s, double joint, double x) {
    return FileSample{time_s, {joint}, Pose{{x, 0, 0}, {1, 0, 0, 0}}};
  };
  const FileTrajectory trajectory = {at(0, 0, 0), at(1, 1e308, 1e200), at(2, -1e308, 2e200)};
  const auto metrics = Measure(trajectory, Arm::Reference());
  for (const MetricIndex metric : {kJointSpeed, kJointAcceleration, kJointJerk, kLineDeviation}) {
    Limits limits;
    limits[metric].assign(metrics[metric].size(), 1e300);
    EXPECT_EQ(1u, FindViolations(metrics, limits).size()) << kMetrics[metric].key;
  }
}

// q = t^2 has the speed 2 t and the acceleration 2, however it is sampled.
TEST(FiniteDifferences, AreExactForAParabolaAtUnevenTimes) {
  FileTrajectory trajectory;
  for (const double t : {0.0, 1.0, 3.0, 3.5}) trajectory.push_back({t, {t * t}, {}});
  const FiniteDifferences rates(trajectory);
  EXPECT_DOUBLE_EQ(2.0, rates.JointSpeedAt(1, 0));
  EXPECT_DOUBLE_EQ(6.0, rates.JointSpeedAt(2, 0));
  EXPECT_DOUBLE_EQ(2.0, rates.JointAcceleration(1, 0));
  EXPECT_DOUBLE_EQ(2.0, rates.JointAcceleration(2, 0));
  EXPECT_EQ(0.0, rates.JointSpeedAt(0, 0));
  EXPECT_EQ(0.0, rates.JointSpeedAt(3, 0));
}

// At its peak each limit holds, a thousandth below it it doesn't; each limit is its metric's alone.
TEST(FindViolations, FindsEachViolationOnce) {
  const auto metrics = Measure(FourSamples(), Arm::Reference());
  EXPECT_TRUE(FindViolations(metrics, DefaultLimits()).empty());
  for (size_t i = kJointSpeed; i < kMetricCount; ++i) {
    const size_t entry = metrics[i].size() > 1 ? 3 : 0;
    Limits limits = DefaultLimits();
    limits[i].assign(metrics[i].size(), 1e9);
    limits[i][entry] = metrics[i][entry]->value;
    EXPECT_TRUE(FindViolations(metrics, limits).empty()) << kMetrics[i].key;
    limits[i][entry] *= 0.999;
    const std::vector<Violation> violations = FindViolations(metrics, limits);
    ASSERT_EQ(1u, violations.size()) << kMetrics[i].key;
    EXPECT_EQ(i, violations[0].metric);
    EXPECT_EQ(entry, violations[0].entry);
  }
}

}  // namespace
}  // namespace qal::io
