#include "../../tools/qal/measure.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "../../tools/qal/differences.h"

namespace qal::tools {
namespace {

// One second apart, joint 1 at 0, 0.1, 0.3, 0.3 rad, joint 4 at 0, 0, 0, -0.2 and joint 6 at 0,
// 0.1, 0.24, 0.33. The poses are those of the joints, but for sample 2: 3 mm higher, turned by 0.02
// rad about z, and -q for q.
Trajectory FourSamples() {
  Trajectory trajectory = {{0.0, {0.0, 0.3, -0.2, 0.0, 0.5, 0.0}, {}},
                           {1.0, {0.1, 0.3, -0.2, 0.0, 0.5, 0.1}, {}},
                           {2.0, {0.3, 0.3, -0.2, 0.0, 0.5, 0.24}, {}},
                           {3.0, {0.3, 0.3, -0.2, -0.2, 0.5, 0.33}, {}}};
  for (size_t i = 0; i < trajectory.size(); ++i) {
    const RoadPoint point = PointAt(trajectory, i);
    trajectory[i].pose = Sample::Pose{point.position, point.orientation};
  }
  auto& [position, q] = *trajectory[2].pose;
  position.z += 0.003;
  const double c = -std::cos(0.01);
  const double s = -std::sin(0.01);
  q = Ori(c * q.w - s * q.z, c * q.x - s * q.y, c * q.y + s * q.x, c * q.z + s * q.w);
  return trajectory;
}

// Between standstills, joint 1 moves at 0.1, 0.2, 0 rad/s: changes of 0.1, 0.1, -0.2, 0 at the
// samples, which change by 0.1, 0, -0.3, 0.2, 0. Joint 4 at 0, 0, -0.2: 0, 0, -0.2, 0.2, and 0, 0,
// -0.2, 0.4, -0.2. Joint 6 at 0.1, 0.14, 0.09: 0.1, 0.04, -0.05, -0.09, and 0.1, -0.06, -0.09,
// -0.04, 0.09.
TEST(Measure, FindsThePeaksAndWhereTheyAre) {
  const auto figures = Measure(FourSamples());
  const double rpm_per_rad_s = 0.005 / 0.000523595;
  const struct {
    FigureIndex figure;
    size_t entry;
    double value;
    size_t sample;
  } expected[] = {
      {kJointSpeed, 0, 0.2, 2},
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
      {kBackwardTimes, 0, 0.0, 0},
  };
  for (const auto& e : expected) {
    const std::optional<Peak>& peak = figures[e.figure].at(e.entry);
    ASSERT_TRUE(peak) << kFigures[e.figure].key;
    // The quaternions of forward kinematics are of single precision.
    EXPECT_NEAR(e.value, peak->value, 1e-6 * std::max(1.0, e.value)) << kFigures[e.figure].key;
    EXPECT_EQ(e.sample, peak->sample) << kFigures[e.figure].key << ", entry " << e.entry;
  }
}

// By its leading joint, the first step is three times, the last twice as large as the other one.
TEST(Measure, HoldsTheEndStepsAgainstTheOthers) {
  const Trajectory trajectory = {
      {0, {0, 0}, {}}, {1, {-0.3, 0.1}, {}}, {2, {-0.3, 0.2}, {}}, {3, {-0.3, 0.4}, {}}};
  const auto figures = Measure(trajectory);
  const std::pair<FigureIndex, Peak> expected[] = {
      {kFirstStep, {0.3, 1}}, {kOtherStep, {0.1, 2}}, {kLastStep, {0.2, 3}}, {kEndStep, {3.0, 1}}};
  for (const auto& [figure, peak] : expected) {
    EXPECT_NEAR(peak.value, figures[figure][0]->value, 1e-12) << kFigures[figure].key;
    EXPECT_EQ(peak.sample, figures[figure][0]->sample) << kFigures[figure].key;
  }
}

// The tool goes 3 cm along x in even steps, 4 mm off the line at sample 1; then it overshoots the
// end by 2 cm in 2 s and comes back: that is off the line as well.
TEST(Measure, TakesTheToolFromTheFile) {
  Trajectory trajectory(5);
  const Pos path[] = {{0, 0, 0}, {0.01, 0.004, 0}, {0.02, 0, 0}, {0.05, 0, 0}, {0.03, 0, 0}};
  const double times[] = {0, 1, 2, 4, 5};
  for (size_t i = 0; i < 5; ++i) {
    trajectory[i].time_s = times[i];
    trajectory[i].pose = Sample::Pose{path[i], {1, 0, 0, 0}};
  }
  EXPECT_NEAR(0.02, Measure(trajectory)[kLineDeviation][0]->value, 1e-15);
  EXPECT_NEAR(0.02, Measure(trajectory)[kToolSpeed][0]->value, 1e-15);
  EXPECT_EQ(4u, Measure(trajectory)[kToolSpeed][0]->sample);
  trajectory.resize(3);
  EXPECT_NEAR(0.004, Measure(trajectory)[kLineDeviation][0]->value, 1e-15);
}

// q = t^2 has the speed 2 t and the acceleration 2, however it is sampled.
TEST(Differences, AreExactForAParabolaAtUnevenTimes) {
  Trajectory trajectory;
  for (const double t : {0.0, 1.0, 3.0, 3.5}) trajectory.push_back({t, {t * t}, {}});
  const Differences rates(trajectory);
  EXPECT_DOUBLE_EQ(2.0, rates.JointSpeedAt(1, 0));
  EXPECT_DOUBLE_EQ(6.0, rates.JointSpeedAt(2, 0));
  EXPECT_DOUBLE_EQ(2.0, rates.JointAcceleration(1, 0));
  EXPECT_DOUBLE_EQ(2.0, rates.JointAcceleration(2, 0));
  EXPECT_EQ(0.0, rates.JointSpeedAt(0, 0));
  EXPECT_EQ(0.0, rates.JointSpeedAt(3, 0));
}

// Rates leave out the repeated and the backward interval: 0.1 rad/s in the first and the last
// remain.
TEST(Measure, CountsTimesThatDoNotIncrease) {
  Trajectory trajectory(5);
  const double times[] = {0, 1, 1, 0.5, 1.5};
  for (size_t i = 0; i < 5; ++i) trajectory[i] = {times[i], {0.1 * static_cast<double>(i)}, {}};
  const auto figures = Measure(trajectory);
  EXPECT_EQ(1.0, figures[kRepeatedTimes][0]->value);
  EXPECT_EQ(2u, figures[kRepeatedTimes][0]->sample);
  EXPECT_EQ(1.0, figures[kBackwardTimes][0]->value);
  EXPECT_EQ(3u, figures[kBackwardTimes][0]->sample);
  EXPECT_NEAR(0.1, figures[kJointSpeed][0]->value, 1e-15);
  EXPECT_EQ(2u, FindViolations(figures, DefaultLimits()).size());
}

// At its peak each limit holds, a thousandth below it it doesn't; each limit is its figure's alone.
TEST(FindViolations, FindsEachViolationOnce) {
  const auto figures = Measure(FourSamples());
  EXPECT_TRUE(FindViolations(figures, DefaultLimits()).empty());
  for (size_t i = kJointSpeed; i < kFigureCount; ++i) {
    const size_t entry = figures[i].size() > 1 ? 3 : 0;
    Limits limits = DefaultLimits();
    limits[i].assign(figures[i].size(), 1e9);
    limits[i][entry] = figures[i][entry]->value;
    EXPECT_TRUE(FindViolations(figures, limits).empty()) << kFigures[i].key;
    limits[i][entry] *= 0.999;
    const std::vector<Violation> violations = FindViolations(figures, limits);
    ASSERT_EQ(1u, violations.size()) << kFigures[i].key;
    EXPECT_EQ(i, violations[0].figure);
    EXPECT_EQ(entry, violations[0].entry);
  }
  Trajectory no_pose = FourSamples();
  for (Sample& sample : no_pose) sample.pose.reset();
  Limits limits;
  limits[kPositionError] = {1.0};
  EXPECT_EQ(1u, FindViolations(Measure(no_pose), limits).size()) << "a check of nothing can't pass";
}

}  // namespace
}  // namespace qal::tools
