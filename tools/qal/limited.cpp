#include "limited.h"

#include <fmt/format.h>
#include <qal/solve/kinematics.h>

#include "../../io/error.h"
#include "../../io/plan_text.h"
#include "../../io/trajectory_json.h"

namespace qal::tools {

using namespace io;

void AddScale(NumberOption& scale, CLI::App& command) {
  scale.AddTo(command, "--scale", "N",
              "limited: percent of each joint's velocity, acceleration and jerk (default: 100)");
}

LimitScale ReadScale(const NumberOption& scale) {
  if (!scale.given()) return {};
  constexpr double kLeastPercent = 0.01;
  const double part = scale.ReadWithin(kLeastPercent, 100) / 100;
  return {part, part, part};
}

std::string RefusalText(const PlanFailure& failure, const std::string& path,
                        const std::string& command, const Units& units) {
  const std::string text = PlanFailureText(failure, path, units.text());
  switch (failure.error.reason) {
    case Reason::kOutOfReach:
    case Reason::kJointRange:
    case Reason::kSingularity:
      return fmt::format("{}; qal explain {} says more", text, command);
    default:
      return text;
  }
}

State EndOf(const Arm& arm, const classic::Ends& ends, const Units& units) {
  if (ends.end_joints) return {*ends.end_joints, ends.end};
  const Result<State> solved = Nearest(arm, ends.end, ends.start.joints);
  if (solved) return *solved;
  throw Failure(fmt::format("no solution at the end, {}: {}; qal explain joint says more",
                            PoseText(ends.end, units), ErrorText(solved.error(), units.text())));
}

namespace {

// "joint jerk of joint 2, 31.5 % of the duration; longest from 0.2 to 0.35 s, 12 to 40 % along".
std::string LimitedBy(const LimitedMotion& motion) {
  if (motion.bindings.empty()) return "nothing";
  const Binding& longest = motion.bindings.front();
  std::string text =
      fmt::format("{}, {:.3g} % of the duration; longest from {:.4g} to {:.4g} s",
                  BindingText(longest), 100 * longest.share, longest.begin_s, longest.end_s);
  if (!motion.along) return text;
  return text + fmt::format(", {:.3g} to {:.3g} % along", 100 * motion.along(longest.begin_s),
                            100 * motion.along(longest.end_s));
}

}  // namespace

std::string LimitedByRow(const LimitedMotion& motion) {
  return fmt::format("{:<32} {}\n", "limited by", LimitedBy(motion));
}

Json LimitedByJson(const LimitedMotion& motion) {
  Json list = Json::array();
  for (const Binding& binding : motion.bindings) {
    Json json = {{"limit", BindingKey(binding)}};
    if (binding.joint >= 0) json["joint"] = binding.joint + 1;
    json["share"] = binding.share;
    json["begin_s"] = binding.begin_s;
    json["end_s"] = binding.end_s;
    list.push_back(json);
  }
  return list;
}

void WriteLimited(const PlanOptions& options, const LoadedArm& loaded, const LimitedMotion& motion,
                  const std::string& rows, const Json& json) {
  const FileTrajectory samples = FromTrajectory(motion.samples);
  Json all = {{"duration_s", samples.back().time_s}};
  all.update(json);
  all["limited_by"] = LimitedByJson(motion);
  all.update(ToJson(samples));
  WritePlan(options, loaded, samples,
            Summary(samples, loaded.arm, options.common.units) + rows + LimitedByRow(motion), all);
}

}  // namespace qal::tools
