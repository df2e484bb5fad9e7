#include "explanation_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "../solver/closed_form/angles.h"
#include "messages.h"

namespace qal::io {

namespace {

constexpr struct {
  const char* key;
  const char* words;
} kCauses[] = {{"none", "it works"},
               {"request", "the request can't be met"},
               {"out_of_reach", "out of reach"},
               {"joint_range", "outside of the joints' range"},
               {"step_bound", "too far from the joints before"},
               {"branch_ends", "the configuration ends"},
               {"singularity", "near a singularity"},
               {"limit", "beyond a limit"},
               {"solver", "the solver is at fault"}};

constexpr const char* kChanges[] = {"start",   "end",       "orientation", "shift",
                                    "tool",    "speed",     "step_bound",  "orientation_error",
                                    "no_zone", "joint_move"};

std::string MetresText(double metres, const TextUnits& units) {
  return fmt::format("{:.6g} {}", units.millimetres ? metres * 1000 : metres,
                     units.millimetres ? "mm" : "m");
}

std::string VectorText(const Vec3& v, const TextUnits& units) {
  const double length = units.millimetres ? 1000 : 1;
  // Adding 0 makes a -0 a 0.
  return fmt::format("{:.6g} {:.6g} {:.6g} {}", v.x * length + 0.0, v.y * length + 0.0,
                     v.z * length + 0.0, units.millimetres ? "mm" : "m");
}

double LengthOf(const Vec3& v) { return std::hypot(v.x, v.y, v.z); }

bool IsRefusedBy(const ExplainedSolution& solution, Reason reason) {
  return solution.refusal && solution.refusal->reason == reason;
}

// Where it fails, as far as it has a place: " 55.67 % along, 0.2784 m from the start, at 1.2 s".
std::string PlaceText(const ExplainedRequest& request, const TextUnits& units) {
  if (!request.why.point || request.what == "pose") return "";
  const auto& [pose, index, along, distance_m, time_s] = *request.why.point;
  if (request.what == "poses") {
    return fmt::format(" at pose {}, {:.6g} s, {} along their way", index, time_s,
                       MetresText(distance_m, units));
  }
  if (along == 0) return " at its start";
  if (request.what == "line") {
    return fmt::format(" {:.4g} % along, {} from the start, at {:.6g} s (sample {})", 100 * along,
                       MetresText(distance_m, units), time_s, index);
  }
  if (along == 1) return " at its end";
  return fmt::format(" {:.4g} % along", 100 * along);
}

// The kind of cause.
std::string CauseText(const Explanation& why) {
  if (why.error.reason == Reason::kConfiguration) return "other joints at the end";
  return kCauses[static_cast<size_t>(why.cause)].words;
}

std::string OutOfReach(const ExplainedRequest& request, const TextUnits& units) {
  std::string text = "no joints have this pose";
  if (!request.why.way_back) return text;
  const Vec3& back = *request.why.way_back;
  const bool on_a_way = request.what != "pose" && request.what != "poses";
  return fmt::format("{}; {} is {} out, {} bring it back", text, on_a_way ? "the end" : "it",
                     MetresText(LengthOf(back), units), VectorText(back, units));
}

std::vector<std::string> JointRange(const Explanation& why, const TextUnits& units) {
  const auto& solutions = why.solutions;
  std::vector<std::string> lines = {ErrorText(why.error, units)};
  const bool all = !solutions.empty() &&
                   std::all_of(solutions.begin(), solutions.end(), [](const auto& solution) {
                     return IsRefusedBy(solution, Reason::kJointRange);
                   });
  if (!all) return lines;
  const std::string nearest = ErrorText(*solutions.front().refusal, units);
  const std::string told =
      fmt::format("each of its {} solutions has a joint outside of its range", solutions.size());
  // The nearest solution may be the one that was asked for.
  if (nearest == lines.front()) return {told + "; the nearest: " + nearest};
  lines.push_back(told);
  return lines;
}

std::string StepBound(const Explanation& why, const TextUnits& units) {
  const auto nearest =
      std::find_if(why.solutions.begin(), why.solutions.end(),
                   [](const auto& solution) { return IsRefusedBy(solution, Reason::kStepBound); });
  if (nearest == why.solutions.end()) return ErrorText(why.error, units);
  const Error& error = *nearest->refusal;
  const auto joint = static_cast<size_t>(std::max(0, error.joint));
  return fmt::format(
      "each admissible solution is too far from the joints before; the nearest: joint {} would go "
      "from {} to {}, by {}; {} is the bound",
      joint + 1, AngleText(why.before[joint], units), AngleText(nearest->joints[joint], units),
      AngleText(std::fabs(error.value), units), AngleText(error.bound, units));
}

std::string BranchEnds(const ExplainedRequest& request) {
  const auto& solutions = request.why.solutions;
  const auto others = std::count_if(solutions.begin(), solutions.end(), [&](const auto& solution) {
    return !IsRefusedBy(solution, Reason::kJointRange) && solution.branch != request.before;
  });
  std::string text = fmt::format("the solution that it came along{} ends here",
                                 request.before ? ", " + BranchName(*request.before) + "," : "");
  if (others == 0) return text;
  return fmt::format("{}; {} of another configuration within the joints' range {} this pose", text,
                     others, others == 1 ? "has" : "have");
}

std::string Singular(const Explanation& why, const TextUnits& units) {
  std::string text = ErrorText(why.error, units);
  if (!why.speed) return text;
  const auto& [joint, needed, allowed, smallest] = *why.speed;
  if (joint < 0) return fmt::format("{}; smallest singular value {:.3g}", text, smallest);
  constexpr double kAtOnce = 1e6;  // times what is allowed: the singularity itself
  if (!(needed < kAtOnce * allowed)) {
    return fmt::format("{}, joint {} above all; smallest singular value {:.3g}", text, joint + 1,
                       smallest);
  }
  return fmt::format(
      "{}; smallest singular value {:.3g}; joint {} would need {}/s for the tool to keep its "
      "speed, {}/s are allowed",
      text, smallest, joint + 1, AngleText(needed, units), AngleText(allowed, units));
}

std::string Limit(const Explanation& why, const TextUnits& units) {
  if (!why.speed || why.speed->joint < 0) return ErrorText(why.error, units);
  return fmt::format("joint {} would need {}/s to be there in time, {}/s are allowed",
                     why.speed->joint + 1, AngleText(why.speed->needed_rad_s, units),
                     AngleText(why.speed->allowed_rad_s, units));
}

std::string JointsText(const Joints& joints, const TextUnits& units) {
  std::string text;
  for (const double joint : joints) {
    text += fmt::format("{:.6g} ", joint * (units.degrees ? 180 / closed_form::kPi : 1) + 0.0);
  }
  return text + (units.degrees ? "deg" : "rad");
}

std::string EndText(const Change& change, const std::string& what, const TextUnits& units) {
  if (what == "move") return "end at joints " + JointsText(change.joints, units);
  return fmt::format("end {:.4g} % of the way along, at {}", 100 * change.value,
                     VectorText(change.pose.position, units));
}

}  // namespace

const char* CauseKey(Cause cause) { return kCauses[static_cast<size_t>(cause)].key; }

const char* ChangeKey(Change::Kind kind) { return kChanges[static_cast<size_t>(kind)]; }

std::string Headline(const ExplainedRequest& request, const TextUnits& units) {
  const Explanation& why = request.why;
  const std::string& what = request.what;
  const bool plural = what == "poses";
  if (why.works()) {
    return OneLine(fmt::format(
        "the {} {}{}", what, plural ? "work" : "works",
        why.duration_s && what != "pose" ? fmt::format(", in {:.6g} s", *why.duration_s) : ""));
  }
  return OneLine(fmt::format("{}{}the {} {}{}: {}", request.place,
                             request.place.empty() ? "" : ": ", what, plural ? "fail" : "fails",
                             PlaceText(request, units), CauseText(why)));
}

std::vector<std::string> ReasonLines(const ExplainedRequest& request, const TextUnits& units) {
  const Explanation& why = request.why;
  switch (why.cause) {
    case Cause::kNone:
      return {};
    case Cause::kOutOfReach:
      return {OutOfReach(request, units)};
    case Cause::kJointRange:
      return JointRange(why, units);
    case Cause::kStepBound:
      return {StepBound(why, units)};
    case Cause::kBranchEnds:
      return {BranchEnds(request), Singular(why, units)};
    case Cause::kSingularity:
      return {Singular(why, units)};
    case Cause::kLimit:
      return {Limit(why, units)};
    default:
      return {ErrorText(why.error, units)};
  }
}

std::string ChangeText(const Change& change, const std::string& what, const TextUnits& units) {
  const auto text = [&]() -> std::string {
    switch (change.kind) {
      case Change::Kind::kStart:
        return "begin with joints " + JointsText(change.joints, units);
      case Change::Kind::kEnd:
        return EndText(change, what, units);
      case Change::Kind::kOrientation:
        return fmt::format("turn the tool {}by {}",
                           what == "pose"    ? ""
                           : what == "poses" ? "at every pose "
                                             : "at the end ",
                           AngleText(change.value, units));
      case Change::Kind::kShift:
        return fmt::format(
            "shift {} by {}; or the arm's base by {}", what == "pose" ? "the pose" : "all poses",
            VectorText(change.vector, units),
            VectorText({-change.vector.x, -change.vector.y, -change.vector.z}, units));
      case Change::Kind::kTool:
        return fmt::format("move the tool centre point by {} along the tool's axes",
                           VectorText(change.vector, units));
      case Change::Kind::kSpeed:
        return fmt::format("go slower, at {:.4g} % of the speed", 100 * change.value);
      case Change::Kind::kStepBound:
        return fmt::format("a step bound of {}", AngleText(change.value, units));
      case Change::Kind::kOrientationError:
        return fmt::format("let the tool be up to {} off the line's orientation",
                           AngleText(change.value, units));
      case Change::Kind::kNoZone:
        return "stop there, without the zone";
      case Change::Kind::kJointMove:
        return "go there by a joint move, off the line";
    }
    return "";
  }();
  if (!change.duration_s) return text;
  return fmt::format("{}; takes {:.6g} s", text, *change.duration_s);
}

std::string AuditText(const BranchAudit& audit, const TextUnits& units) {
  if (!audit.failure) return "completed";
  return fmt::format("{:.4g} % along: {}", 100 * audit.failure->along,
                     ErrorText(audit.failure->error, units));
}

}  // namespace qal::io
