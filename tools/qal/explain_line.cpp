#include <fmt/format.h>
#include <qal/explain/explain.h>
#include <qal/model/rotations.h>
#include <qal/plan/sampled.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "explain.h"
#include "joint_arguments.h"
#include "limited.h"
#include "line_arguments.h"
#include "line_remedies.h"
#include "verdict.h"

namespace qal::tools {

using namespace io;

namespace {

struct ExplainLineArguments {
  LineArguments line;
  bool branches = false;
  const CLI::App* command = nullptr;
};

// Where a classic operation has failed.
PlanFailure FailureOf(const classic::Failure& failure, const State& from, const Pose& to) {
  PlanFailure told = {failure.error, 0, from};
  const double length_m = Distance(from.pose.position, to.position);
  if (failure.at && length_m > 0) {
    told.along = std::min(1.0, Distance(from.pose.position, failure.at->position) / length_m);
  }
  return told;
}

// With --strict, the limit that is exceeded by most.
std::optional<PlanFailure> Exceeds(const FileTrajectory& plan, const Arm& arm) {
  const Verdict verdict = Judge(plan, arm);
  constexpr const char* kNames[] = {"velocity_rad_s", "acceleration_rad_s2", "jerk_rad_s3"};
  for (const Check& check : verdict.checks) {
    if (!check.exceeded) continue;
    Error error = {Reason::kEndRate, static_cast<int>(check.joint), check.value, check.limit.value};
    if (check.kind == Check::Kind::kMotorSpeed) error.reason = Reason::kMotorSpeed;
    if (check.kind == Check::Kind::kRange) error.reason = Reason::kJointRange;
    if (error.reason == Reason::kEndRate) error.detail = kNames[static_cast<size_t>(check.kind)];
    const double along = static_cast<double>(check.point) / static_cast<double>(plan.size() - 1);
    return PlanFailure{error, along, {plan[check.point].joints, *plan[check.point].pose}};
  }
  return std::nullopt;
}

// Plans as the profile does, at a part of the speed.
LinePlanner PlannerFor(const LineArguments& a, const classic::Ends& asked) {
  const ClassicLine line = ReadClassicLine(a);
  return [&a, asked, line](const Arm& arm, const State& from, const Pose& to,
                           double speed) -> LineAttempt {
    classic::Ends ends = {from, to};
    const bool as_asked =
        from.joints == asked.start.joints && NumbersOf(to) == NumbersOf(asked.end);
    if (as_asked) ends.end_joints = asked.end_joints;
    const classic::Plan plan = ClassicPlanner(a, line.Slower(speed))(arm, ends, {});
    if (!plan) return {FailureOf(plan.error(), from, to), plan.error().point};
    const FileTrajectory samples = FromStates(*plan, arm.cycle_s().value);
    LineAttempt attempt = {std::nullopt, std::nullopt, samples.back().time_s};
    if (a.plan.strict) attempt.failure = Exceeds(samples, arm);
    return attempt;
  };
}

// What keeps a line from being what was asked for although it could be followed: joints at its end
// that aren't those of --to, or too many points.
void ExplainOutcome(const LineArguments& a, const Arm& arm, const classic::Ends& ends,
                    Explanation& why) {
  const auto motion = PlanLine(arm, ends.start, ends.end, ReadLineLimits(a));
  if (!motion) return;
  if (const auto samples = Sampled(arm, *motion); !samples) {
    why.error = samples.error().error;
    why.cause = Cause::kRequest;
  }
  const auto error = ArrivesElsewhere(*motion, ends);
  if (!error) return;
  why.error = *error;
  why.cause = Cause::kRequest;
  why.before = motion->At(motion->duration_s()).joints;
}

// What else is said about a line that works.
void AddMotion(const LineArguments& a, const Arm& arm, ExplainedAnswer& answer) {
  if (!a.limited()) return;
  const auto [motion, samples] = PlanLimitedLine(a, arm);
  answer.rows = LimitedByRow({samples, motion.bindings(), [&motion = motion](double time_s) {
                                return motion.AlongAt(time_s);
                              }});
  answer.motion = FromTrajectory(samples);
}

// How far a line gets that doesn't work.
FileTrajectory PartThatWorks(const LineArguments& a, const Arm& arm, const classic::Ends& ends,
                             const Explanation& why) {
  const auto end = std::find_if(why.changes.begin(), why.changes.end(), [](const Change& change) {
    return change.kind == Change::Kind::kEnd;
  });
  if (!a.limited() || end == why.changes.end()) return {};
  const auto motion = PlanLine(arm, ends.start, end->pose, ReadLineLimits(a));
  if (!motion) return {};
  const auto samples = Sampled(arm, *motion);
  return samples ? FromTrajectory(*samples) : FileTrajectory();
}

void RunExplainLine(const ExplainLineArguments& arguments) {
  const LineArguments& a = arguments.line;
  a.Check();
  a.plan.report.Check();
  if (arguments.branches && !a.limited()) {
    throw UsageError("--branches goes with --profile limited");
  }
  const LoadedArm loaded = a.plan.common.arm->Load();
  const Arm& arm = loaded.arm;
  const classic::Ends ends = a.ends.ReadAny(a.plan.common.units, arm);
  ExplainedAnswer answer;
  ExplainedRequest& request = answer.request;
  request.what = "line";
  request.path = {ends.start.pose.position, ends.end.position};
  Explanation& why = request.why;
  if (a.limited()) {
    why = ExplainLine(arm, ends.start, ends.end, ReadLineLimits(a));
    if (why.works()) ExplainOutcome(a, arm, ends, why);
  } else {
    why = ExplainLine(arm, ends.start, ends.end, PlannerFor(a, ends));
  }
  if (arguments.branches) {
    request.branches = AuditBranches(arm, ends.start, ends.end, ReadLineLimits(a));
  }
  if (why.works()) {
    AddMotion(a, arm, answer);
  } else {
    request.before = BranchOf(arm, why.before);
    request.remedies = LineRemedies({a, *arguments.command, arm, ends}, why);
    answer.motion = PartThatWorks(a, arm, ends, why);
  }
  WriteExplained(a.plan.common, a.plan.report, loaded, answer);
}

}  // namespace

void AddExplainLine(CLI::App& explain, const SharedArm& arm) {
  const auto arguments = std::make_shared<ExplainLineArguments>();
  CLI::App* line = explain.add_subcommand("line", "Why qal line has no motion");
  arguments->line.AddTo(*line, arm);
  arguments->command = line;
  line->add_flag("--branches", arguments->branches,
                 "which start configurations complete the line (profile limited): how long each\n"
                 "takes, and how near it gets to limits and singularities");
  line->footer(
      "Options of the output (--csv, --full, --strict) are for the commands that it tells.\n"
      "Exit status: 0 the line works, 1 it fails.\n"
      "Example: qal explain line --from 0 0.3 0.2 0 1 0 --by 0.5 0 0");
  line->callback([arguments] { RunExplainLine(*arguments); });
}

}  // namespace qal::tools
