#include "program_limits.h"

#include <fmt/format.h>

#include <limits>

#include "numbers.h"
#include "units.h"

namespace qal::io {

namespace {

constexpr double kUnlimited = std::numeric_limits<double>::infinity();

// A key, and where its number goes. One in radians may be in degrees as well, `_deg` for `_rad`.
template <class Settings>
struct SettingKey {
  const char* key;
  double Settings::*setting;
};

constexpr SettingKey<LineLimits> kLineKeys[] = {
    {"speed_m_s", &LineLimits::speed_m_s},
    {"acceleration_m_s2", &LineLimits::acceleration_m_s2},
    {"jerk_m_s3", &LineLimits::jerk_m_s3},
    {"turn_speed_rad_s", &LineLimits::turn_speed_rad_s},
    {"turn_acceleration_rad_s2", &LineLimits::turn_acceleration_rad_s2},
    {"turn_jerk_rad_s3", &LineLimits::turn_jerk_rad_s3},
};
constexpr char kOrientationErrorKey[] = "max_orientation_error_rad";

constexpr SettingKey<Zone> kZones[] = {
    {"zone_m", &Zone::tool_m},
    {"zone_turn_rad", &Zone::turn_rad},
    {"zone_joint_rad", &Zone::joint_rad},
};

void AddKey(std::vector<std::string>& keys, const std::string& key) {
  keys.push_back(key);
  if (const size_t unit = key.find("_rad"); unit != std::string::npos) {
    keys.push_back(std::string(key).replace(unit, 4, "_deg"));
  }
}

// The number of a key; where it isn't above the least, or beyond the most, it is refused.
void Read(const Fields& fields, const std::string& key, bool zero, double most, double& setting) {
  const std::string written = fields.AngleKey(key);
  if (written.empty()) return;
  const double given = fields.Number(written, std::nullopt);
  const double value = given * AngleUnit(written);
  if (!(zero ? value >= 0 : value > 0) || value > most) {
    fields.Refuse(
        written,
        fmt::format(
            "{}; a number {} 0{} is expected", FormatNumber(given), zero ? "not below" : "above",
            most == kUnlimited ? "" : fmt::format(" up to {:.6g}", most / AngleUnit(written))));
  }
  setting = value;
}

double Part(const Fields& fields, double percent) {
  if (!(percent > 0 && percent <= 100)) {
    fields.Refuse("scale_percent",
                  FormatNumber(percent) + "; percent above 0 up to 100 are expected");
  }
  return percent / 100;
}

// One number for velocity, acceleration and jerk, or a list of three.
void ReadScale(const Fields& fields, LimitScale& scale) {
  if (!fields.Has("scale_percent")) return;
  if (fields.at("scale_percent").is_array()) {
    const Vec3 percent = fields.Triple("scale_percent");
    scale = {Part(fields, percent.x), Part(fields, percent.y), Part(fields, percent.z)};
    return;
  }
  const double part = Part(fields, fields.Number("scale_percent", std::nullopt));
  scale = {part, part, part};
}

// 0 in any of its numbers is a stop.
std::optional<Zone> ReadZone(const Fields& fields, const std::optional<Zone>& otherwise) {
  Zone zone = otherwise.value_or(Zone());
  bool given = otherwise.has_value();
  for (const auto& [key, setting] : kZones) {
    if (fields.AngleKey(key).empty()) continue;
    given = true;
    Read(fields, key, true, kUnlimited, zone.*setting);
    if (zone.*setting == 0) return std::nullopt;
  }
  return given ? std::optional(zone) : std::nullopt;
}

}  // namespace

std::vector<std::string> WithSettingKeys(std::vector<std::string> keys, bool tool) {
  if (tool) {
    for (const auto& limit : kLineKeys) AddKey(keys, limit.key);
    AddKey(keys, kOrientationErrorKey);
  }
  keys.emplace_back("scale_percent");
  for (const auto& zone : kZones) AddKey(keys, zone.key);
  return keys;
}

StepSettings ReadStepSettings(const Fields& fields, const StepSettings& otherwise) {
  constexpr double kMostErrorRad = 0.5;  // as PlanLine
  StepSettings settings = otherwise;
  LineLimits& limits = settings.limits;
  for (const auto& [key, setting] : kLineKeys) {
    Read(fields, key, false, kUnlimited, limits.*setting);
  }
  Read(fields, kOrientationErrorKey, true, kMostErrorRad, limits.max_orientation_error_rad);
  ReadScale(fields, limits.scale);
  settings.zone = ReadZone(fields, otherwise.zone);
  return settings;
}

}  // namespace qal::io
