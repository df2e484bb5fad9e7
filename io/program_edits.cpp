#include "program_edits.h"

#include <fmt/format.h>

#include <algorithm>

namespace qal::io {

namespace {

bool Same(const Vec3& a, const Vec3& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

bool Same(const Quat& a, const Quat& b) {
  return a.w == b.w && a.x == b.x && a.y == b.y && a.z == b.z;
}

bool Same(const Target& a, const Target& b) {
  if (a.index() != b.index()) return false;
  if (const Joints* const joints = std::get_if<Joints>(&a)) return *joints == std::get<Joints>(b);
  const Pose& one = std::get<Pose>(a);
  const Pose& other = std::get<Pose>(b);
  return Same(one.position, other.position) && Same(one.orientation, other.orientation);
}

Json PointOf(const Target& target) {
  if (const Joints* const joints = std::get_if<Joints>(&target)) return {{"joints_rad", *joints}};
  const auto& [p, q] = std::get<Pose>(target);
  return {{"xyz", {p.x, p.y, p.z}}, {"quat_wxyz", {q.w, q.x, q.y, q.z}}};
}

// Collects what is different in a step.
struct StepEdits {
  const StepPlace& place;
  std::vector<ProgramEdit>& edits;

  void Add(const char* key, Json value) {
    // Each repetition of a block has the same table.
    const std::string label = place.label.substr(0, place.label.find(','));
    edits.push_back({place.pointer, label, key, std::move(value)});
  }
  void Compare(const std::optional<Zone>& zone, const std::optional<Zone>& changed) {
    if (zone && !changed) Add("zone_m", 0);
  }
  void Compare(const JointStep& step, const JointStep& changed) {
    if (!Same(step.to, changed.to)) Add("joint", PointOf(changed.to));
    Compare(step.zone, changed.zone);
  }
  void Compare(const LineStep& step, const LineStep& changed) {
    if (!Same(step.to, changed.to)) Add("line", PointOf(changed.to));
    const double error = changed.limits.max_orientation_error_rad;
    if (error != step.limits.max_orientation_error_rad) Add("max_orientation_error_rad", error);
    Compare(step.zone, changed.zone);
  }
  void Compare(const ArcStep& step, const ArcStep& changed) { Compare(step.zone, changed.zone); }
  void Compare(const WaitStep& /*step*/, const WaitStep& /*changed*/) {}
  void Compare(const ToolStep& /*step*/, const ToolStep& /*changed*/) {}
};

std::string TomlOf(const Json& value) {
  if (!value.is_structured()) return value.dump();
  std::string text;
  for (const auto& [key, entry] : value.items()) {
    text += text.empty() ? "" : ", ";
    text += value.is_object() ? fmt::format("{} = {}", key, TomlOf(entry)) : TomlOf(entry);
  }
  return value.is_object() ? "{" + text + "}" : "[" + text + "]";
}

}  // namespace

std::vector<ProgramEdit> EditsOf(const ProgramFile& file, const Program& changed) {
  std::vector<ProgramEdit> edits;
  const Program& program = file.program;
  if (program.start != changed.start) edits.push_back({"", "", "start", PointOf(changed.start)});
  for (size_t i = 0; i < std::min(program.steps.size(), changed.steps.size()); ++i) {
    std::visit(
        [&](const auto& step) {
          const auto* const other = std::get_if<std::decay_t<decltype(step)>>(&changed.steps[i]);
          if (other != nullptr) StepEdits{file.places[i], edits}.Compare(step, *other);
        },
        program.steps[i]);
  }
  return edits;
}

ProgramFile ReadEdited(const Document& document, const std::vector<ProgramEdit>& edits,
                       const Arm& arm) {
  Document edited(document.path, document.root);
  for (const auto& [pointer, label, key, value] : edits) {
    edited.root[nlohmann::json::json_pointer(pointer)][key] = value;
  }
  return ReadProgram(edited, arm);
}

std::string EditText(const std::vector<ProgramEdit>& edits, bool as_json) {
  std::string text;
  for (const auto& [pointer, label, key, value] : edits) {
    if (!text.empty()) text += "; ";
    if (!label.empty()) text += label + ": ";
    text += as_json ? fmt::format("\"{}\": {}", key, value.dump())
                    : fmt::format("{} = {}", key, TomlOf(value));
  }
  return text;
}

}  // namespace qal::io
