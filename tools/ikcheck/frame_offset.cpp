#include "frame_offset.h"

#include <fmt/format.h>

#include <cmath>

namespace qal::ikcheck {

namespace {

// As the origin of a fixed joint is written in a URDF.
std::string Origin(const Frame& frame) {
  const auto& r = frame.linear();
  const double level = std::hypot(r(0, 0), r(1, 0));
  // Pointing straight up or down, roll and yaw turn about one axis: all of it is roll.
  const bool upright = level < kAgreed;
  double values[6] = {frame.translation()(0),
                      frame.translation()(1),
                      frame.translation()(2),
                      upright ? std::atan2(-r(1, 2), r(1, 1)) : std::atan2(r(2, 1), r(2, 2)),
                      std::atan2(-r(2, 0), level),
                      upright ? 0.0 : std::atan2(r(1, 0), r(0, 0))};
  for (double& value : values) value = std::round(value * 1e6) / 1e6 + 0.0;  // no -0
  return fmt::format("xyz=\"{} {} {}\" rpy=\"{} {} {}\"", values[0], values[1], values[2],
                     values[3], values[4], values[5]);
}

constexpr size_t kFewFrames = 3;  // they don't tell whether the tool or the base is elsewhere

}  // namespace

Offset::Offset(const Frame& from, const Frame& to)
    : distance((to.translation() - from.translation()).norm()),
      angle_rad(Eigen::AngleAxisd(from.linear().transpose() * to.linear()).angle()) {}

std::string FixedOffset(const std::string& whose, const std::vector<Frame>& other,
                        const std::vector<Frame>& frames, double reach) {
  if (frames.size() < kFewFrames) return "";
  const auto constant = [&](const auto& between) {
    const Frame first = between(0);
    for (size_t i = 1; i < frames.size(); ++i) {
      if (!(Offset(first, between(i)).Size(reach) <= kAgreed)) return std::string();
    }
    return whose + " is at " + Origin(first);
  };
  const std::string tool = constant([&](size_t i) { return frames[i].inverse() * other[i]; });
  if (!tool.empty()) return "; only the tool frame differs: " + tool;
  const std::string base = constant([&](size_t i) { return frames[i] * other[i].inverse(); });
  if (!base.empty()) return "; only the base frame differs: " + base;
  return "";
}

}  // namespace qal::ikcheck
