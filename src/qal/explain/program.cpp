#include "causes.h"
#include "explain.h"
#include "program_changes.h"

namespace qal {

namespace {

// A step by itself, from rest to rest.
Explanation ExplainStep(const BeforeStep& before, const ProgramStep& step) {
  if (const auto* const line = std::get_if<LineStep>(&step)) {
    const Joints* const joints = std::get_if<Joints>(&line->to);
    const auto end =
        joints != nullptr ? Forward(before.arm, *joints) : Result<Pose>(std::get<Pose>(line->to));
    if (end) return ExplainLine(before.arm, {before.joints, *end}, *end, line->limits);
  }
  if (const auto* const move = std::get_if<JointStep>(&step)) {
    return ExplainJoint(before.arm, before.joints, move->to, {move->scale});
  }
  return {};
}

// What the planner itself says: of arcs and zones.
Explanation ExplainFailure(const Arm& arm, const PlanFailure& failure) {
  Explanation why;
  why.error = failure.error;
  why.cause = CauseOf(failure.error.reason);
  why.before = failure.before.joints;
  if (why.cause == Cause::kRequest || why.cause == Cause::kSolver) return why;
  why.point = FailingPoint{failure.before.pose};
  why.point->along = failure.along;
  why.solutions =
      SolutionsOf(arm, failure.before.pose, why.before, StepBoundsOf(arm, 1, arm.cycle_s().value));
  return why;
}

}  // namespace

ProgramExplanation ExplainProgram(const Arm& arm, const Program& program) {
  ProgramExplanation told;
  told.start = program.start;
  const auto motion = PlanProgram(arm, program);
  if (motion) {
    told.why.duration_s = motion->duration_s();
    return told;
  }
  const auto& [failure, step] = motion.error();
  told.step = step;
  const auto before = Before(arm, program, step);
  if (!before || step >= program.steps.size()) {
    told.why = ExplainFailure(arm, failure);
    return told;
  }
  told.start = before->joints;
  told.why = ExplainStep(*before, program.steps[step]);
  if (told.why.works()) told.why = ExplainFailure(before->arm, failure);
  if (told.why.cause != Cause::kRequest && told.why.cause != Cause::kSolver) {
    TryInProgram(arm, program, told);
  }
  return told;
}

}  // namespace qal
