#include "summary.h"

#include <fmt/format.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <vector>

#include "../../io/family_text.h"
#include "../../io/messages.h"
#include "../../src/qal/model/family.h"
#include "../../src/qal/model/frames.h"

namespace qal::tools {

namespace {

using nlohmann::ordered_json;

struct NamedLength {
  const char* name;
  double metres;
  const char* meaning;
};

std::vector<NamedLength> LengthsOf(const Member& member) {
  const closed_form::Body& body = BodyOf(member);
  std::vector<NamedLength> lengths = {
      {"shoulder", body.shoulder, "axis 1 to axis 2"},
      {"lateral", body.lateral, "axis 1 to the wrist's centre, along axis 2"},
      {"upper_arm", body.upper_arm, "axis 2 to axis 3"},
      {"forearm", body.forearm, "axis 3 to axis 4, or to the wrist's centre"}};
  double reach = body.upper_arm + body.forearm;
  if (const auto* arm = std::get_if<closed_form::ParallelAxesArm>(&member)) {
    const double offset = std::hypot(arm->wrist_offset_x, arm->wrist_offset_z);
    lengths.push_back({"wrist_offset", offset, "axis 4 to the wrist's centre"});
    reach += offset;
  }
  const double to_tip = Length(body.centre_in_tool);
  if (const auto* arm = std::get_if<closed_form::OffsetWristArm>(&member)) {
    lengths.push_back({"offset_along_5", arm->wrist_offset_y,
                       "the wrist's centre to where axis 6 passes, along axis 5"});
    lengths.push_back(
        {"offset_5_to_6", arm->wrist_offset_z, "axis 5 to axis 6, at right angles to both"});
    lengths.push_back(
        {"axis_6_to_tip", to_tip, "where axis 6 passes the wrist's centre to the tip"});
  } else {
    lengths.push_back({"centre_to_tip", to_tip, "the wrist's centre to the tip"});
  }
  lengths.push_back({"reach", reach, "axis 2 to the wrist's centre at the most"});
  return lengths;
}

// A joint's place in the model's own count of angles.
struct ModelJoint {
  double direction, zero_rad;
};

// A general arm's angles are counted as described.
ModelJoint ModelJointOf(const FittedModel& fitted, size_t joint) {
  if (!fitted.member) return {1, 0};
  const closed_form::Body& body = BodyOf(*fitted.member);
  return {body.direction[joint], body.zero[joint]};
}

std::string LimitText(const std::optional<double>& rad) {
  return rad ? fmt::format("{:.6g}", *rad) : "none";
}

// The family, how far off it the axes are, which arm the solver is then of, and what it costs.
std::string MethodText(const FittedModel& fitted, const ArmDescription& description,
                       const Verification& verification) {
  const std::string cost =
      fmt::format("{:.2g} us a pose on this machine", verification.solve_s * 1e6);
  if (!fitted.member) {
    return fmt::format("  no family: {}\n  solved by continuation, {}\n",
                       io::FamiliesMissedText(ExamineFamilies(description)), cost);
  }
  const TipDifference& tip = verification.difference;
  const char* const solved = fitted.exact      ? "the same arm"
                             : fitted.polished ? "solved as described, each solution polished"
                                               : "solved as that member (--nominal)";
  return fmt::format(
      "  {}: axes within {} of the nearest member,\n"
      "  its tip within {} of the described one; {}, {}\n",
      FamilyName(fitted.family), io::DeviationText(fitted.deviation),
      io::DeviationText(AxisDeviation{tip.angle_rad, tip.position_m}), solved, cost);
}

std::string CheckText(const Verification& verification) {
  const std::string found =
      verification.missed == 0
          ? "each solved and found again"
          : fmt::format("each solved, {} not found again (singularities)", verification.missed);
  return fmt::format(
      "  checked with {} random joint sets: {}, forward kinematics within "
      "{:.1e}, solutions within {:.1e} (metres and matrix elements)\n",
      verification.joint_sets, found, verification.forward, verification.solutions);
}

}  // namespace

std::string SummaryText(const io::LoadedArm& arm, const ArmDescription& description,
                        const FittedModel& fitted, const Verification& verification) {
  std::string text = io::ArmHeading(arm) + '\n' +
                     fmt::format("  from '{}' to '{}'\n", io::NameText(description.base),
                                 io::NameText(description.tip));
  if (fitted.member) {
    for (const auto& [name, metres, meaning] : LengthsOf(*fitted.member)) {
      text += fmt::format("  {:<14}{:>11.6g} m    {}\n", name, metres, meaning);
    }
  }
  text += fmt::format("  {:<16}{:>10}{:>12}{:>12}{:>12}\n", "joint", "direction", "zero_rad",
                      "lower_rad", "upper_rad");
  for (size_t j = 0; j < description.joints.size(); ++j) {
    const JointDescription& joint = description.joints[j];
    const ModelJoint model = ModelJointOf(fitted, j);
    text += fmt::format("  {:<16}{:>10}{:>12.6f}{:>12}{:>12}\n", io::NameText(joint.name),
                        model.direction, model.zero_rad, LimitText(joint.lower_rad),
                        LimitText(joint.upper_rad));
  }
  return text + MethodText(fitted, description, verification) + CheckText(verification);
}

std::string SummaryJson(const io::LoadedArm& arm, const ArmDescription& description,
                        const FittedModel& fitted, const Verification& verification) {
  ordered_json json = {
      {"arm", io::ArmJson(arm)}, {"base", description.base}, {"tip", description.tip}};
  if (fitted.member) {
    for (const NamedLength& length : LengthsOf(*fitted.member)) {
      json["lengths_m"][length.name] = length.metres;
    }
  }
  for (size_t j = 0; j < description.joints.size(); ++j) {
    const JointDescription& joint = description.joints[j];
    const ModelJoint model = ModelJointOf(fitted, j);
    json["joints"].push_back(
        {{"name", joint.name},
         {"direction", model.direction},
         {"zero_rad", model.zero_rad},
         {"lower_rad", joint.lower_rad ? ordered_json(*joint.lower_rad) : nullptr},
         {"upper_rad", joint.upper_rad ? ordered_json(*joint.upper_rad) : nullptr}});
  }
  if (fitted.member) {
    json["nearest_member"] = {{"axis_angle_rad", fitted.deviation.angle_rad},
                              {"axis_distance_m", fitted.deviation.distance_m},
                              {"tip_angle_rad", verification.difference.angle_rad},
                              {"tip_distance_m", verification.difference.position_m}};
  }
  json["geometry"] = fitted.IsDescribed() ? "described" : "nominal";
  json["method"] = fitted.polished ? "polished" : fitted.member ? "closed form" : "continuation";
  json["check"] = {{"joint_sets", verification.joint_sets},
                   {"missed", verification.missed},
                   {"forward", verification.forward},
                   {"solutions", verification.solutions},
                   {"solve_s", verification.solve_s}};
  // Names come from the file as they are; what is no UTF-8 in them is replaced.
  return json.dump(2, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

}  // namespace qal::tools
