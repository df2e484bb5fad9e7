#include "plan_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "../solver/closed_form/angles.h"

namespace qal::io {

namespace {

// Of a failure on the way; empty for one of the request, which has no place.
const char* RemedyOf(const Error& error) {
  switch (error.reason) {
    case Reason::kOutOfReach:
      return "bring the path nearer to the arm";
    case Reason::kJointRange:
      return "begin in another configuration, or end elsewhere";
    case Reason::kSingularity:
      return "lead it past there, or make a joint move";
    case Reason::kNoPose:
    case Reason::kSolverFault:
    case Reason::kSolverThrows:
      return "look into the solver";
    default:
      return "";
  }
}

std::string StateText(const State& state, const TextUnits& units) {
  std::string text = "joints";
  const double angle = units.degrees ? 180 / closed_form::kPi : 1;
  for (const double joint : state.joints) text += fmt::format(" {:.6g}", joint * angle);
  const double length = units.millimetres ? 1000 : 1;
  const auto& [x, y, z] = state.pose.position;
  return text + fmt::format(" {}, position {:.6g} {:.6g} {:.6g} {}", units.degrees ? "deg" : "rad",
                            x * length, y * length, z * length, units.millimetres ? "mm" : "m");
}

constexpr std::array<const char*, 9> kKeys = {"tool_speed",     "tool_acceleration",  "tool_jerk",
                                              "turn_speed",     "turn_acceleration",  "turn_jerk",
                                              "joint_velocity", "joint_acceleration", "joint_jerk"};

}  // namespace

std::string PlanFailureText(const PlanFailure& failure, const std::string& path,
                            const TextUnits& units) {
  const std::string reason = ErrorText(failure.error, units);
  const std::string remedy = RemedyOf(failure.error);
  if (failure.error.reason == Reason::kTooManyPoints) return reason + "; a faster one has fewer";
  if (remedy.empty()) return reason;
  return fmt::format("{:.4g} % along the {}: {}; before it {}; {}", 100 * failure.along, path,
                     reason, StateText(failure.before, units), remedy);
}

std::string BindingKey(const Binding& binding) { return kKeys[static_cast<size_t>(binding.limit)]; }

std::string BindingText(const Binding& binding) {
  std::string text = BindingKey(binding);
  std::replace(text.begin(), text.end(), '_', ' ');
  return binding.joint < 0 ? text : fmt::format("{} of joint {}", text, binding.joint + 1);
}

}  // namespace qal::io
