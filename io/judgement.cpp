#include "judgement.h"

#include <algorithm>

namespace qal::io {

namespace {

// Of a solver that takes joints up to an end of their range.
constexpr double kRangeSlackRad = 1e-9;
// Below them a joint rests, and rates agree: less than any file of four decimals is worth.
constexpr double kRest = 1e-6;
constexpr double kSpeedErrorRadS = 1e-3;
constexpr double kAccelerationErrorRadS2 = 1e-2;

Bound BoundOf(const Setting& setting) {
  return {setting.value, setting.described ? Origin::kDescribed : Origin::kAssumed};
}

}  // namespace

const char* OriginText(Origin origin) {
  switch (origin) {
    case Origin::kDescribed:
      return "described";
    case Origin::kAssumed:
      return "assumed";
    case Origin::kOption:
      return "option";
    case Origin::kAlways:
      break;
  }
  return "always";
}

Limits LimitsOf(const Arm& arm) {
  Limits limits;
  for (const JointModel& joint : arm.joints()) {
    limits[kJointSpeed].push_back(BoundOf(joint.velocity_rad_s));
    limits[kJointAcceleration].push_back(BoundOf(joint.acceleration_rad_s2));
    limits[kJointJerk].push_back(BoundOf(joint.jerk_rad_s3));
    const bool described = joint.lower_rad.described || joint.upper_rad.described;
    limits[kBeyondRange].push_back(BoundOf({kRangeSlackRad, described}));
  }
  limits[kRepeatedTimes] = limits[kBackwardTimes] = {{0.0, Origin::kAlways}};
  limits[kSpeedError] = {{kSpeedErrorRadS, Origin::kAlways}};
  limits[kAccelerationError] = {{kAccelerationErrorRadS2, Origin::kAlways}};
  limits[kEndSpeed] = limits[kEndAcceleration] = {{kRest, Origin::kAlways}};
  return limits;
}

bool IsBeyond(const Peak& peak, double limit) {
  // Separates a real excess from the rounding of angles and times in a plan that goes up to its
  // limit exactly: a difference of theirs loses up to six digits, a jerk more.
  constexpr double kSlack = 1.0 + 1e-6;
  return peak.value > limit * kSlack;
}

std::vector<Violation> FindViolations(const Metrics& metrics, const Limits& limits) {
  std::vector<Violation> violations;
  for (size_t i = 0; i < kMetricCount; ++i) {
    for (size_t entry = 0; entry < limits[i].size(); ++entry) {
      const std::optional<Peak>& peak = metrics[i][entry];
      const Bound& limit = limits[i][entry];
      const bool violated = peak ? IsBeyond(*peak, limit.value) : limit.origin == Origin::kOption;
      if (violated) violations.push_back({static_cast<MetricIndex>(i), entry, limit});
    }
  }
  return violations;
}

}  // namespace qal::io
