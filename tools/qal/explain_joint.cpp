#include <qal/explain/explain.h>
#include <qal/solve/kinematics.h>

#include <memory>

#include "explain.h"
#include "joint_arguments.h"
#include "limited.h"

namespace qal::tools {

using namespace io;

namespace {

struct ExplainJointArguments {
  JointArguments joint;
  const CLI::App* command = nullptr;
};

// The tool's way, as far as the joints at the end are known.
std::vector<Vec3> PathOf(const Arm& arm, const Joints& from, const Joints& to) {
  constexpr int kPieces = 64;
  std::vector<Vec3> path;
  for (int i = 0; i <= kPieces; ++i) {
    Joints joints;
    for (size_t j = 0; j < joints.size(); ++j) {
      joints[j] = from[j] + (to[j] - from[j]) * i / kPieces;
    }
    if (const auto pose = Forward(arm, joints)) path.push_back(pose->position);
  }
  return path;
}

class JointRemedyMaker {
 public:
  JointRemedyMaker(const ExplainJointArguments& arguments, const Arm& arm)
      : arguments_(arguments), arm_(arm) {}

  std::vector<Remedy> All(const Explanation& why) const;

 private:
  std::optional<Remedy> Make(const Change& change) const;
  CommandLine Joint() const {
    return {"qal joint",
            *arguments_.command,
            arguments_.joint.plan.common.units,
            EndQuantities(),
            {"--json"}};
  }
  bool Works(const CommandLine& joint) const;

  const ExplainJointArguments& arguments_;
  const Arm& arm_;
};

bool JointRemedyMaker::Works(const CommandLine& joint) const {
  return qal::tools::Works<JointArguments>(joint, [this](const JointArguments& a) {
    a.Check();
    ExpectWithinLimits(a.plan,
                       a.limited() ? FromTrajectory(PlanLimitedMove(a, arm_).samples)
                                   : PlanClassic(a.ends, a.plan, ClassicPlanner(a), arm_),
                       arm_);
  });
}

std::optional<Remedy> JointRemedyMaker::Make(const Change& change) const {
  const Units& units = arguments_.joint.plan.common.units;
  CommandLine joint = Joint();
  // An end that is a pose is explained as one.
  const bool of_pose = joint.Has("--to-pose") || joint.Has("--by");
  const bool ends_by_joints =
      change.kind == Change::Kind::kJointMove || (change.kind == Change::Kind::kEnd && !of_pose);
  Remedy remedy = {ChangeKey(change.kind),
                   ChangeText(change, of_pose ? "pose" : "move", units.text())};
  if (change.kind == Change::Kind::kTool) {
    remedy.keys = ToolKeys(arm_, change.vector);
    return remedy;
  }
  if (change.kind == Change::Kind::kStart) {
    joint.SetNumbers("--from", NumbersOf(change.joints));
  } else if (ends_by_joints) {
    SetEnd(joint, change.joints);
  } else {
    SetEnd(joint, change.pose);
  }
  if (!Works(joint)) return std::nullopt;
  remedy.command = joint.Text();
  return remedy;
}

std::vector<Remedy> JointRemedyMaker::All(const Explanation& why) const {
  std::vector<Remedy> remedies;
  for (const Change& change : why.changes) {
    if (auto remedy = Make(change)) remedies.push_back(*std::move(remedy));
  }
  return remedies;
}

// A classic operation has limits of its own.
void ExplainClassic(const JointArguments& a, const Arm& arm, const classic::Ends& ends,
                    Explanation& why) {
  const classic::Plan plan = ClassicPlanner(a)(arm, ends, {});
  if (plan) {
    why.duration_s = static_cast<double>(plan->size() - 1) * arm.cycle_s().value;
    return;
  }
  why.error = plan.error().error;
  why.cause = why.error.reason == Reason::kJointRange ? Cause::kJointRange : Cause::kRequest;
  if (plan.error().at) why.point = FailingPoint{*plan.error().at, plan.error().point.value_or(0)};
}

void RunExplainJoint(const ExplainJointArguments& arguments) {
  const JointArguments& a = arguments.joint;
  a.Check();
  a.plan.report.Check();
  const LoadedArm loaded = a.plan.common.arm->Load();
  const Arm& arm = loaded.arm;
  const Units& units = a.plan.common.units;
  const classic::Ends ends = a.ends.ReadAny(units, arm);
  const Target to = ends.end_joints ? Target(*ends.end_joints) : Target(ends.end);
  ExplainedAnswer answer;
  ExplainedRequest& request = answer.request;
  request = {"move", ExplainJoint(arm, ends.start.joints, to, {ReadScale(a.scale)})};
  Explanation& why = request.why;
  if (why.works() && !a.limited()) ExplainClassic(a, arm, ends, why);
  const auto end = ends.end_joints ? Result<State>(State{*ends.end_joints, ends.end})
                                   : Nearest(arm, ends.end, ends.start.joints);
  if (end) request.path = PathOf(arm, ends.start.joints, end->joints);
  if (why.works() && a.limited()) {
    const auto [motion, samples] = PlanLimitedMove(a, arm);
    answer.rows = LimitedByRow({samples, motion.bindings()});
    answer.motion = FromTrajectory(samples);
  }
  if (!why.works()) {
    request.before = BranchOf(arm, why.before);
    request.remedies = JointRemedyMaker(arguments, arm).All(why);
  }
  WriteExplained(a.plan.common, a.plan.report, loaded, answer);
}

}  // namespace

void AddExplainJoint(CLI::App& explain, const SharedArm& arm) {
  const auto arguments = std::make_shared<ExplainJointArguments>();
  CLI::App* joint = explain.add_subcommand("joint", "Why qal joint has no motion");
  arguments->joint.AddTo(*joint, arm);
  arguments->command = joint;
  joint->footer(
      "Options of the output (--csv, --full, --strict) are for the commands that it tells.\n"
      "Exit status: 0 the move works, 1 it fails.\n"
      "Example: qal explain joint --from 0 0 0 0 1 0 --to 0 0 0 0 1 3.3");
  joint->callback([arguments] { RunExplainJoint(*arguments); });
}

}  // namespace qal::tools
