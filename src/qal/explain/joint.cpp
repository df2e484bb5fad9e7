#include <algorithm>
#include <cmath>

#include "../plan/joint_limits.h"
#include "../plan/joint_path.h"
#include "causes.h"
#include "explain.h"

namespace qal {

namespace {

// The nearest joints within their range; of a joint that is out, whole turns away where that is in.
Joints WithinRange(const Arm& arm, const Joints& joints) {
  Joints within = joints;
  for (size_t j = 0; j < joints.size(); ++j) {
    const JointModel& model = arm.joints()[j];
    if (Outside(model, joints[j]) <= 0) continue;
    within[j] = std::clamp(joints[j], model.lower_rad.value, model.upper_rad.value);
    for (const double turn : {-2 * kPi, 2 * kPi}) {
      if (Outside(model, joints[j] + turn) <= 0) within[j] = joints[j] + turn;
    }
  }
  return within;
}

class JointExplainer {
 public:
  JointExplainer(const Arm& arm, const Joints& from, const JointLimits& limits)
      : arm_(arm), from_(from), limits_(limits) {}

  Explanation Explain(const Joints& to) const;

 private:
  void AddChanges(const Joints& to, Explanation& why) const;

  const Arm& arm_;
  const Joints& from_;
  const JointLimits& limits_;
};

Explanation JointExplainer::Explain(const Joints& to) const {
  Explanation why;
  why.before = from_;
  const auto motion = PlanJoint(arm_, {from_}, {to}, limits_);
  if (motion) {
    why.duration_s = motion->duration_s();
    return why;
  }
  why.error = motion.error().error;
  why.cause = CauseOf(why.error.reason);
  if (why.cause != Cause::kJointRange) return why;
  const bool at_start = RefusedJoints(arm_, from_).has_value();
  const Joints& failing = at_start ? from_ : to;
  const auto pose = Forward(arm_, failing);
  if (!pose) return why;
  why.point = FailingPoint{*pose};
  why.point->along = at_start ? 0 : 1;
  // The others of this pose, as they are seen from where the arm stands.
  const double any = std::numeric_limits<double>::infinity();
  why.solutions = SolutionsOf(arm_, *pose, from_, {any, any, any, any, any, any});
  AddChanges(to, why);
  return why;
}

void JointExplainer::AddChanges(const Joints& to, Explanation& why) const {
  const auto add = [&](Change::Kind kind, const Joints& from, const Joints& end) {
    const auto motion = PlanJoint(arm_, {from}, {end}, limits_);
    const bool starts = kind == Change::Kind::kStart;
    if (!motion) return;
    Change change = {kind, starts ? SizeOf(from, from_) : SizeOf(end, to), starts ? from : end};
    change.duration_s = motion->duration_s();
    why.changes.push_back(change);
  };
  if (RefusedJoints(arm_, from_)) {
    add(Change::Kind::kStart, WithinRange(arm_, from_), to);
  } else {
    add(Change::Kind::kEnd, from_, WithinRange(arm_, to));
    // The same pose by other joints.
    for (const ExplainedSolution& solution : why.solutions) {
      if (solution.refusal) continue;
      add(Change::Kind::kJointMove, from_, solution.joints);
      break;
    }
  }
  Sort(why.changes);
}

}  // namespace

Explanation ExplainJoint(const Arm& arm, const Joints& from, const Target& to,
                         const JointLimits& limits) {
  const JointExplainer explainer(arm, from, limits);
  if (const Joints* const joints = std::get_if<Joints>(&to)) return explainer.Explain(*joints);
  const Pose& pose = std::get<Pose>(to);
  const auto end = Nearest(arm, pose, from);
  return end ? explainer.Explain(end->joints) : ExplainPose(arm, pose, from);
}

}  // namespace qal
