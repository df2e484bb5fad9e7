#include "../../io/metrics.h"

#include <gtest/gtest.h>
#include <qal/solve/kinematics.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>

#include "../../io/finite_differences.h"
#include "../../io/judgement.h"

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
  const Arm arm = Arm::Reference();
  EXPECT_EQ(2u, FindViolations(Measure(trajectory, arm), LimitsOf(arm)).size());
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
    limits[metric].assign(metrics[metric].size(), {1e300, Origin::kOption});
    EXPECT_EQ(1u, FindViolations(metrics, limits).size()) << kMetrics[metric].key;
  }
}

// A move of joint 1 from rest to rest: the acceleration rises, holds and falls, the speed is kept,
// and all of it backwards.
struct Move {
  double jerk, rise_s, hold_s, cruise_s;

  double acceleration() const { return jerk * rise_s; }
  double speed() const { return acceleration() * (rise_s + hold_s); }
};

FileSample At(const Move& move, double time_s) {
  const double durations[] = {move.rise_s, move.hold_s, move.rise_s, move.cruise_s,
                              move.rise_s, move.hold_s, move.rise_s};
  double q = 0, v = 0, a = 0, left = time_s;
  for (size_t i = 0; i < 7; ++i) {
    const double h = std::clamp(left, 0.0, durations[i]);
    const double jerk = i == 0 || i == 6 ? move.jerk : i == 2 || i == 4 ? -move.jerk : 0;
    q += h * (v + h * (a / 2 + h * jerk / 6));
    v += h * (a + h * jerk / 2);
    a += h * jerk;
    left -= h;
  }
  return {time_s, {q}, {}, Joints{v}, Joints{a}};
}

// One sample a cycle of 5 ms; the arm stays a cycle or two at the end.
FileTrajectory Sampled(const Move& move) {
  FileTrajectory trajectory;
  const double duration_s = 4 * move.rise_s + 2 * move.hold_s + move.cruise_s;
  do trajectory.push_back(At(move, 0.005 * static_cast<double>(trajectory.size())));
  while (trajectory.back().time_s < duration_s + 0.005);
  trajectory.back().velocities = trajectory.back().accelerations = Joints{};
  return trajectory;
}

// The samples lie anywhere: what a move reaches between them isn't overstated by anything, nor
// understated by 1 %.
TEST(Measure, TellsWhatAMotionReachesBetweenItsSamples) {
  std::mt19937 generator(1);
  const auto draw = [&generator](double least, double most) {
    return least * std::pow(most / least, static_cast<double>(generator()) / 4294967296.0);
  };
  for (int i = 0; i < 300; ++i) {
    const double jerk = draw(3, 1000), rise_s = draw(0.01, 0.2);
    const double hold_s = draw(0.001, 0.3), cruise_s = draw(0.001, 0.3);
    const Move move = {jerk, rise_s, i % 3 == 0 ? 0 : hold_s, i % 4 == 0 ? 0 : cruise_s};
    const FileTrajectory samples = Sampled(move);
    for (const double excess : {1.0, 1.01}) {
      SCOPED_TRACE(testing::Message() << jerk << ' ' << rise_s << ' ' << move.hold_s << ' '
                                      << move.cruise_s << ", limits divided by " << excess);
      const Metrics metrics = Measure(samples, Arm::Reference(), Joints{jerk / excess});
      const bool beyond = excess > 1;
      EXPECT_EQ(beyond, IsBeyond(*metrics[kJointSpeed][0], move.speed() / excess));
      EXPECT_EQ(beyond, IsBeyond(*metrics[kJointAcceleration][0], move.acceleration() / excess));
      EXPECT_EQ(beyond, IsBeyond(*metrics[kJointJerk][0], jerk / excess));
      EXPECT_LT(metrics[kSpeedError][0]->value, beyond ? 1e-3 : 1e-9);
    }
  }
}

// Whatever steps the acceleration has between samples, true rates agree with the joints. Others
// don't, and a motion that is cut off doesn't rest at its ends.
TEST(Measure, TellsRatesThatAreNotTheJoints) {
  const auto scale = [](std::optional<Joints> FileSample::*rates, double factor) {
    return [rates, factor](FileTrajectory& samples) {
      for (FileSample& sample : samples) (*(sample.*rates))[0] *= factor;
    };
  };
  const struct {
    std::function<void(FileTrajectory&)> change;
    std::vector<MetricIndex> violated;
  } rows[] = {
      {[](auto&) {}, {}},
      {scale(&FileSample::velocities, 0.99), {kSpeedError}},
      {scale(&FileSample::velocities, 0), {kSpeedError, kAccelerationError}},
      {scale(&FileSample::accelerations, 0.95), {kAccelerationError}},
      {[](auto& samples) { samples.resize(samples.size() / 4); }, {kEndSpeed, kEndAcceleration}},
  };
  for (const double rise_s : {0.05, 1e-9}) {
    const FileTrajectory truth = Sampled({3.4 / rise_s, rise_s, 0.1033, 0.1577});
    for (const auto& [change, violated] : rows) {
      FileTrajectory samples = truth;
      change(samples);
      const Metrics metrics = Measure(samples, Arm::Reference());
      for (const MetricIndex metric :
           {kSpeedError, kAccelerationError, kEndSpeed, kEndAcceleration}) {
        const bool expected = std::count(violated.begin(), violated.end(), metric) > 0;
        EXPECT_EQ(expected,
                  IsBeyond(*metrics[metric][0], LimitsOf(Arm::Reference())[metric][0].value))
            << "row " << &change - &rows[0].change << ", " << kMetrics[metric].key << ' '
            << metrics[metric][0]->value << ", rise " << rise_s;
      }
    }
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
// What isn't measured is a violation where somebody has asked for it.
TEST(FindViolations, FindsEachViolationOnce) {
  const auto metrics = Measure(FourSamples(), Arm::Reference());
  EXPECT_TRUE(FindViolations(metrics, LimitsOf(Arm::Reference())).empty());
  for (size_t i = kJointSpeed; i < kMetricCount; ++i) {
    const size_t entry = metrics[i].size() > 1 ? 3 : 0;
    if (metrics[i][entry] && metrics[i][entry]->value == 0) continue;
    Limits limits = LimitsOf(Arm::Reference());
    limits[i].assign(metrics[i].size(),
                     {1e9, metrics[i][entry] ? Origin::kOption : Origin::kAlways});
    if (metrics[i][entry]) limits[i][entry].value = metrics[i][entry]->value;
    EXPECT_TRUE(FindViolations(metrics, limits).empty()) << kMetrics[i].key;
    limits[i][entry] = {limits[i][entry].value * 0.999, Origin::kOption};
    const std::vector<Violation> violations = FindViolations(metrics, limits);
    ASSERT_EQ(1u, violations.size()) << kMetrics[i].key;
    EXPECT_EQ(i, violations[0].metric);
    EXPECT_EQ(entry, violations[0].entry);
  }
}

}  // namespace
}  // namespace qal::io
