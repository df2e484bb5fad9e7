#include "joint_model.h"

#include <cmath>
#include <limits>

#include "frames.h"

namespace qal {

namespace {

constexpr double kAssumedLimitRad = 170 * kPi / 180;
constexpr double kAssumedVelocityRadS = kPi;
constexpr double kAssumedMotorSpeedRpm = 3000;
// The velocity is reached in this time, and the acceleration in this.
constexpr double kAssumedSpeedUpS = 0.25;
constexpr double kAssumedJerkS = 0.05;
constexpr double kRadSPerRpm = 2 * kPi / 60;

// The first of them that was said.
Setting FirstOf(const std::optional<double>& settings, const std::optional<double>& described,
                double assumed) {
  if (settings) return {*settings, true};
  if (described) return {*described, true};
  return {assumed, false};
}

void SetLimits(const JointDescription& described, const JointSettings& settings,
               JointModel& model) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const bool endless = described.continuous;
  model.lower_rad =
      FirstOf(settings.lower_rad, endless ? -kInfinity : described.lower_rad, -kAssumedLimitRad);
  model.upper_rad =
      FirstOf(settings.upper_rad, endless ? kInfinity : described.upper_rad, kAssumedLimitRad);
}

void SetMotion(const JointDescription& described, const JointSettings& settings,
               JointModel& model) {
  std::optional<double> velocity = settings.velocity_rad_s;
  if (!velocity && settings.motor_speed_rpm && settings.gear_ratio) {
    velocity = *settings.motor_speed_rpm * kRadSPerRpm / *settings.gear_ratio;
  }
  model.velocity_rad_s = FirstOf(velocity, described.velocity_rad_s, kAssumedVelocityRadS);
  if (settings.gear_ratio) {
    model.gear_ratio = {*settings.gear_ratio, true};
  } else {
    const double motor_rpm = settings.motor_speed_rpm.value_or(kAssumedMotorSpeedRpm);
    model.gear_ratio = {motor_rpm * kRadSPerRpm / model.velocity_rad_s.value,
                        settings.motor_speed_rpm && model.velocity_rad_s.described};
  }
  model.acceleration_rad_s2 = FirstOf(settings.acceleration_rad_s2, std::nullopt,
                                      model.velocity_rad_s.value / kAssumedSpeedUpS);
  if (!settings.acceleration_rad_s2 && settings.motor_acceleration_rpm_s) {
    model.acceleration_rad_s2 = {
        *settings.motor_acceleration_rpm_s * kRadSPerRpm / model.gear_ratio.value,
        model.gear_ratio.described};
  }
  model.jerk_rad_s3 =
      FirstOf(settings.jerk_rad_s3, std::nullopt, model.acceleration_rad_s2.value / kAssumedJerkS);
}

std::optional<Error> RefusedLimits(int joint, const JointDescription& described,
                                   const JointSettings& settings, const JointModel& model) {
  // Infinite are only the limits of a joint that is described as turning without end.
  const bool lower_open = described.continuous && !settings.lower_rad;
  const bool upper_open = described.continuous && !settings.upper_rad;
  if (!lower_open && !std::isfinite(model.lower_rad.value)) {
    return Error{Reason::kLimits, joint, model.lower_rad.value, 0, "lower_rad"};
  }
  if (!upper_open && !std::isfinite(model.upper_rad.value)) {
    return Error{Reason::kLimits, joint, model.upper_rad.value, 0, "upper_rad"};
  }
  if (model.lower_rad.value > model.upper_rad.value) {
    return Error{Reason::kLimits, joint, model.lower_rad.value, model.upper_rad.value, "lower_rad"};
  }
  return std::nullopt;
}

}  // namespace

double JointModel::motor_speed_rpm() const {
  return velocity_rad_s.value * gear_ratio.value / kRadSPerRpm;
}

std::optional<Error> ExpectPositive(int joint, const char* name, double value) {
  if (std::isfinite(value) && value > 0) return std::nullopt;
  return Error{Reason::kLimits, joint, value, 0, name};
}

Result<JointModel> MakeJointModel(int joint, const JointDescription& described,
                                  const JointSettings& settings) {
  JointModel model;
  model.name = described.name.empty() ? "joint_" + std::to_string(joint + 1) : described.name;
  SetLimits(described, settings, model);
  SetMotion(described, settings, model);
  if (const auto refused = RefusedLimits(joint, described, settings, model)) return *refused;
  // What was said first: a number that follows from it is at fault only for its sake.
  const std::pair<const char*, std::optional<double>> positive[] = {
      {"gear_ratio", settings.gear_ratio},
      {"motor_speed_rpm", settings.motor_speed_rpm},
      {"motor_acceleration_rpm_s", settings.motor_acceleration_rpm_s},
      {"velocity_rad_s", model.velocity_rad_s.value},
      {"acceleration_rad_s2", model.acceleration_rad_s2.value},
      {"jerk_rad_s3", model.jerk_rad_s3.value},
      {"gear_ratio", model.gear_ratio.value}};
  for (const auto& [name, value] : positive) {
    if (!value) continue;
    if (const auto refused = ExpectPositive(joint, name, *value)) return *refused;
  }
  return model;
}

}  // namespace qal
