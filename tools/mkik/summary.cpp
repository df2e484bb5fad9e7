#include "summary.h"

#include <fmt/format.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "../../io/messages.h"
#include "../../src/qal/model/family.h"
#include "../../src/qal/model/frames.h"

namespace qal::tools {

namespace {

using nlohmann::ordered_json;

// Lengths by name [m].
std::vector<std::pair<std::string, double>> LengthsOf(const Model& model) {
  const closed_form::Body& body = BodyOf(model);
  std::vector<std::pair<std::string, double>> lengths = {{"shoulder", body.shoulder},
                                                         {"lateral", body.lateral},
                                                         {"upper_arm", body.upper_arm},
                                                         {"forearm", body.forearm}};
  double reach = body.upper_arm + body.forearm;
  if (const auto* arm = std::get_if<closed_form::ParallelAxesArm>(&model)) {
    const double offset = std::hypot(arm->wrist_offset_x, arm->wrist_offset_z);
    lengths.emplace_back("wrist_offset", offset);
    reach += offset;
  }
  lengths.emplace_back("centre_to_tip", Length(body.centre_in_tool));
  lengths.emplace_back("reach", reach);
  return lengths;
}

const char* Meaning(const std::string& length) {
  if (length == "shoulder") return "axis 1 to axis 2";
  if (length == "lateral") return "axis 1 to the wrist's centre, along axis 2";
  if (length == "upper_arm") return "axis 2 to axis 3";
  if (length == "forearm") return "axis 3 to axis 4, or to the wrist's centre";
  if (length == "wrist_offset") return "axis 4 to the wrist's centre";
  if (length == "centre_to_tip") return "the wrist's centre to the tip";
  return "axis 2 to the wrist's centre at the most";
}

std::string LimitText(const std::optional<double>& rad) {
  return rad ? fmt::format("{:.6g}", *rad) : "none";
}

}  // namespace

std::string SummaryText(const io::LoadedArm& arm, const ArmDescription& description,
                        const Model& model, const Verification& verification) {
  std::string text =
      io::ArmHeading(arm) + '\n' +
      io::OneLine(fmt::format("  from '{}' to '{}'", description.base, description.tip)) + '\n';
  for (const auto& [name, metres] : LengthsOf(model)) {
    text += fmt::format("  {:<14}{:>11.6g} m    {}\n", name, metres, Meaning(name));
  }
  const closed_form::Body& body = BodyOf(model);
  text += fmt::format("  {:<16}{:>10}{:>12}{:>12}{:>12}\n", "joint", "direction", "zero_rad",
                      "lower_rad", "upper_rad");
  for (size_t j = 0; j < description.joints.size(); ++j) {
    const JointDescription& joint = description.joints[j];
    text += fmt::format("  {:<16}{:>10}{:>12.6f}{:>12}{:>12}\n", joint.name, body.direction[j],
                        body.zero[j], LimitText(joint.lower_rad), LimitText(joint.upper_rad));
  }
  text += fmt::format(
      "  checked with {} random joint sets: each solved and found again, forward kinematics within "
      "{:.1e}, solutions within {:.1e} (metres and matrix elements)\n",
      verification.joint_sets, verification.forward, verification.solutions);
  return text;
}

std::string SummaryJson(const io::LoadedArm& arm, const ArmDescription& description,
                        const Model& model, const Verification& verification) {
  ordered_json json = {
      {"arm", io::ArmJson(arm)}, {"base", description.base}, {"tip", description.tip}};
  for (const auto& [name, metres] : LengthsOf(model)) json["lengths_m"][name] = metres;
  const closed_form::Body& body = BodyOf(model);
  for (size_t j = 0; j < description.joints.size(); ++j) {
    const JointDescription& joint = description.joints[j];
    json["joints"].push_back(
        {{"name", joint.name},
         {"direction", body.direction[j]},
         {"zero_rad", body.zero[j]},
         {"lower_rad", joint.lower_rad ? ordered_json(*joint.lower_rad) : nullptr},
         {"upper_rad", joint.upper_rad ? ordered_json(*joint.upper_rad) : nullptr}});
  }
  json["tolerances"] = {{"axis_angle_rad", kAxisAngleToleranceRad},
                        {"axis_distance_m", kAxisDistanceToleranceM}};
  json["check"] = {{"joint_sets", verification.joint_sets},
                   {"forward", verification.forward},
                   {"solutions", verification.solutions}};
  // Names come from the file as they are; what is no UTF-8 in them is replaced.
  return json.dump(2, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

}  // namespace qal::tools
