#include "arm_settings.h"

#include <fmt/format.h>

#include "frame.h"
#include "units.h"

namespace qal::io {

namespace {

// A key of [limits] or [motors], and where its numbers go.
struct JointKey {
  const char* key;
  std::optional<double> JointSettings::*setting;
  bool degrees = false;
};

constexpr JointKey kJointKeys[] = {
    {"lower_rad", &JointSettings::lower_rad},
    {"lower_deg", &JointSettings::lower_rad, true},
    {"upper_rad", &JointSettings::upper_rad},
    {"upper_deg", &JointSettings::upper_rad, true},
    {"velocity_rad_s", &JointSettings::velocity_rad_s},
    {"velocity_deg_s", &JointSettings::velocity_rad_s, true},
    {"acceleration_rad_s2", &JointSettings::acceleration_rad_s2},
    {"acceleration_deg_s2", &JointSettings::acceleration_rad_s2, true},
    {"jerk_rad_s3", &JointSettings::jerk_rad_s3},
    {"jerk_deg_s3", &JointSettings::jerk_rad_s3, true},
};

constexpr JointKey kMotors[] = {
    {"gear_ratio", &JointSettings::gear_ratio},
    {"speed_rpm", &JointSettings::motor_speed_rpm},
    {"acceleration_rpm_s", &JointSettings::motor_acceleration_rpm_s},
};

// A number for all joints, or a list of six.
std::array<double, 6> SixNumbers(const Fields& table, const char* key) {
  std::array<double, 6> numbers;
  if (!table.at(key).is_array()) {
    if (!table.at(key).is_number()) table.Refuse(key, "a number or a list of six is expected");
    numbers.fill(table.Number(key, std::nullopt));
    return numbers;
  }
  const size_t count = table.at(key).size();
  if (count != numbers.size()) {
    table.Refuse(key, fmt::format("{} numbers; one or six are expected", count));
  }
  const std::vector<double> list = table.Numbers(key, numbers.size());
  std::copy(list.begin(), list.end(), numbers.begin());
  return numbers;
}

template <size_t count>
void ReadJointKeys(const Fields& file, const char* name, const JointKey (&keys)[count],
                   ArmSettings& settings) {
  if (!file.Has(name)) return;
  const Fields table = file.Object(name);
  std::vector<std::string> expected;
  for (const JointKey& key : keys) expected.emplace_back(key.key);
  table.Expect(expected);
  for (const auto& [key, setting, degrees] : keys) {
    if (!table.Has(key)) continue;
    const std::array<double, 6> numbers = SixNumbers(table, key);
    for (size_t j = 0; j < numbers.size(); ++j) {
      std::optional<double>& value = settings.joints[j].*setting;
      if (value) table.Refuse(key, "given in radians and in degrees; one of them is expected");
      value = degrees ? numbers[j] * kPi / 180 : numbers[j];
    }
  }
}

}  // namespace

ArmSettings ReadArmSettings(const Fields& file) {
  ArmSettings settings;
  settings.name = file.Text("name", "");
  if (file.Has("cycle_s")) settings.cycle_s = file.Number("cycle_s", std::nullopt);
  ReadJointKeys(file, "limits", kJointKeys, settings);
  ReadJointKeys(file, "motors", kMotors, settings);
  if (file.Has("base")) settings.base = ReadFrame(file.Object("base"));
  if (file.Has("tool")) settings.tool = ReadFrame(file.Object("tool"));
  return settings;
}

}  // namespace qal::io
