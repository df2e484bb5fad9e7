#include "plan_summary.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "../../io/plan_text.h"

namespace qal::tools {

using namespace io;

namespace {

// A step's zone; of one without a corner, none.
const std::optional<Zone>& ZoneOf(const ProgramStep& step) {
  static const std::optional<Zone> none;
  if (const auto* joint = std::get_if<JointStep>(&step)) return joint->zone;
  if (const auto* line = std::get_if<LineStep>(&step)) return line->zone;
  if (const auto* arc = std::get_if<ArcStep>(&step)) return arc->zone;
  return none;
}

// What the step allows the tool [m/s].
double SpeedOf(const ProgramStep& step) {
  if (const auto* line = std::get_if<LineStep>(&step)) return line->limits.speed_m_s;
  if (const auto* arc = std::get_if<ArcStep>(&step)) return arc->limits.speed_m_s;
  return 0;
}

bool IsOutside(const RoundedCorner& corner, const Zone& zone) {
  constexpr double kRounding = 1e-9;  // [m, rad]
  return corner.radius_m > zone.tool_m + kRounding || corner.turn_rad > zone.turn_rad + kRounding ||
         corner.joint_rad > zone.joint_rad + kRounding;
}

std::string CornerRows(const PlannedProgram& planned, const Units& units) {
  const std::vector<RoundedCorner>& corners = planned.motion.corners();
  std::string rows = ValueRow("corners without a stop", std::to_string(corners.size()));
  if (corners.empty()) return rows;
  const auto farthest =
      std::max_element(corners.begin(), corners.end(),
                       [](const auto& a, const auto& b) { return a.deviation_m < b.deviation_m; });
  rows += fmt::format("{:<32} {:>12} of {:>12}\n", "zones kept",
                      corners.size() - CornersOutsideOfZones(planned), corners.size());
  return rows + fmt::format("{:<32} {:>12} at the end of {}\n",
                            fmt::format("largest deviation [{}]", units.length()),
                            fmt::format("{:.6g}", units.Length(farthest->deviation_m)),
                            planned.file.StepText(farthest->step));
}

std::string SlowRows(const PlannedProgram& planned, const Units& units) {
  constexpr size_t kMostRows = 5;
  const std::vector<SlowStretch> stretches = planned.motion.slow_stretches();
  std::string rows = ValueRow("slow stretches", std::to_string(stretches.size()));
  for (size_t i = 0; i < std::min(stretches.size(), kMostRows); ++i) {
    const SlowStretch& slow = stretches[i];
    rows += fmt::format(
        "{:<32} {:>12} of {:>12}, {:.3g} % along {}, by {}; from {:.4g} to {:.4g} s\n",
        fmt::format("  slowest [{}/s]", units.length()),
        fmt::format("{:.6g}", units.Length(slow.slowest_m_s)),
        fmt::format("{:.6g}", units.Length(SpeedOf(planned.file.program.steps[slow.step]))),
        100 * slow.slowest_along, planned.file.StepText(slow.step),
        BindingText({slow.limit, slow.joint}), slow.begin_s, slow.end_s);
  }
  if (stretches.size() <= kMostRows) return rows;
  return rows + fmt::format("  and {} more, with --json\n", stretches.size() - kMostRows);
}

Json StepJson(const StepPlace& place) {
  Json json = {{"step", place.label}, {"what", place.what}};
  if (place.line > 0) json["line"] = place.line;
  return json;
}

// JSON knows no infinity.
Json BoundJson(double bound) { return std::isfinite(bound) ? Json(bound) : Json(nullptr); }

Json CornerJson(const RoundedCorner& corner, const Zone& zone, const StepPlace& place) {
  Json json = StepJson(place);
  json.update(Json{{"begin_s", corner.begin_s},
                   {"end_s", corner.end_s},
                   {"radius_m", corner.radius_m},
                   {"turn_rad", corner.turn_rad},
                   {"joint_rad", corner.joint_rad},
                   {"deviation_m", corner.deviation_m},
                   {"zone_m", BoundJson(zone.tool_m)},
                   {"zone_turn_rad", BoundJson(zone.turn_rad)},
                   {"zone_joint_rad", BoundJson(zone.joint_rad)},
                   {"kept", !IsOutside(corner, zone)}});
  return json;
}

Json SlowJson(const SlowStretch& slow, const PlannedProgram& planned) {
  const Binding binding = {slow.limit, slow.joint};
  Json json = StepJson(planned.file.places[slow.step]);
  json.update(Json{{"begin_s", slow.begin_s},
                   {"end_s", slow.end_s},
                   {"slowest_m_s", slow.slowest_m_s},
                   {"slowest_at_s", slow.slowest_at_s},
                   {"slowest_along", slow.slowest_along},
                   {"speed_m_s", SpeedOf(planned.file.program.steps[slow.step])},
                   {"limit", BindingKey(binding)}});
  if (slow.joint >= 0) json["joint"] = slow.joint + 1;
  return json;
}

}  // namespace

size_t CornersOutsideOfZones(const PlannedProgram& planned) {
  const std::vector<RoundedCorner>& corners = planned.motion.corners();
  return static_cast<size_t>(
      std::count_if(corners.begin(), corners.end(), [&](const RoundedCorner& corner) {
        const std::optional<Zone>& zone = ZoneOf(planned.file.program.steps[corner.step]);
        return !zone || IsOutside(corner, *zone);
      }));
}

std::string ProgramRows(const PlannedProgram& planned, const Units& units) {
  return ValueRow("steps", std::to_string(planned.file.places.size())) +
         CornerRows(planned, units) + SlowRows(planned, units);
}

Json ProgramJson(const PlannedProgram& planned) {
  const ProgramFile& file = planned.file;
  Json steps = Json::array();
  for (size_t i = 0; i < file.places.size(); ++i) {
    steps.push_back(StepJson(file.places[i]));
    steps.back()["begin_s"] = planned.motion.step_begins_s()[i];
  }
  Json corners = Json::array();
  for (const RoundedCorner& corner : planned.motion.corners()) {
    corners.push_back(CornerJson(corner,
                                 ZoneOf(file.program.steps[corner.step]).value_or(Zone{0, 0, 0}),
                                 file.places[corner.step]));
  }
  Json slow = Json::array();
  for (const SlowStretch& stretch : planned.motion.slow_stretches()) {
    slow.push_back(SlowJson(stretch, planned));
  }
  return {{"program", file.name}, {"steps", steps}, {"corners", corners}, {"slow_stretches", slow}};
}

}  // namespace qal::tools
