#include "move.h"

#include <fmt/format.h>
#include <qal/model/rotations.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>

#include "../../io/error.h"
#include "../../io/metrics.h"
#include "../../io/trajectory_json.h"
#include "pose_option.h"
#include "verdict.h"

namespace qal::tools {

using namespace io;

void EndOptions::AddTo(CLI::App& command) {
  from_.AddTo(command, "--from", kJointsShape, "start: six joint angles [rad; --deg: deg]");
  to_.AddTo(command, "--to", kJointsShape, "end: six joint angles [rad; --deg: deg]");
  to_pose_.AddTo(command, "--to-pose", kPoseShape,
                 "end: x y z [m; --mm: mm] qw qx qy qz, or x y z with --rpy,\n"
                 "or x y z alone, which keeps the start's orientation");
  rpy_.AddTo(command, "--rpy", kRpyShape, kRpyHelp);
  by_.AddTo(command, "--by", "X Y Z",
            "end: this far from the start, x y z in the base frame [m; --mm: mm]");
}

classic::Ends EndOptions::Read(const Units& units, const Arm& arm) const {
  return Read(units, arm,
              [&](const NumberOption& joints) { return ReadArmJoints(joints, units, arm); });
}

classic::Ends EndOptions::ReadAny(const Units& units, const Arm& arm) const {
  return Read(units, arm, [&](const NumberOption& joints) { return ReadJoints(joints, units); });
}

classic::Ends EndOptions::Read(const Units& units, const Arm& arm, const JointsReader& read) const {
  if (to_.given() + to_pose_.given() + by_.given() != 1) {
    throw UsageError("one of --to, --to-pose and --by is expected, for the end");
  }
  if (rpy_.given() && !to_pose_.given()) throw UsageError("--rpy goes with --to-pose");
  const State start = StateAt(arm, read(from_));
  if (to_.given()) {
    const State end = StateAt(arm, read(to_));
    return {start, end.pose, end.joints};
  }
  const Quat& kept = start.pose.orientation;
  if (to_pose_.given()) {
    const Pose pose = ReadPose(to_pose_, rpy_, units, &kept);
    return {start, {pose.position, SignedAs(pose.orientation, kept)}};
  }
  const Vec3 by = ReadVector(by_, units, fmt::format("x y z [{}]", units.length()));
  const Vec3& from = start.pose.position;
  return {start, {{from.x + by.x, from.y + by.y, from.z + by.z}, kept}};
}

void PlanOptions::AddTo(CLI::App& command, const std::shared_ptr<ArmOption>& arm) {
  common.AddTo(command, arm, true);
  AddJudgingTo(command);
  command.add_flag("--verbose", verbose, "the operation's own messages, on standard error");
}

void PlanOptions::AddJudgingTo(CLI::App& command) {
  command.add_flag("--strict", strict,
                   "exit status 1 when the plan exceeds a limit of the arm, assumed ones too");
  report.AddTo(command);
}

classic::Listener PlanOptions::Listener() const {
  if (!verbose) return {};
  return [](std::string_view text) { (void)std::fwrite(text.data(), 1, text.size(), stderr); };
}

void RefuseOthers(const std::string& profile, std::initializer_list<const NumberOption*> all,
                  std::initializer_list<const NumberOption*> taken) {
  for (const NumberOption* option : all) {
    if (option->given() && std::find(taken.begin(), taken.end(), option) == taken.end()) {
      throw UsageError(fmt::format("{} does not go with --profile {}", option->name(), profile));
    }
  }
}

namespace {

// "at point 57, 0.0224 m (22.4 %) along the line, at POSE"; what isn't known is left out.
std::string PlaceOf(const classic::Failure& failure, const classic::Ends& ends,
                    const Units& units) {
  if (!failure.at) return "";
  const std::string pose = PoseText(*failure.at, units);
  if (!failure.point) return "at " + pose;
  const Vec3& start = ends.start.pose.position;
  const double along_m = Distance(start, failure.at->position);
  const double length_m = Distance(start, ends.end.position);
  return fmt::format("at point {}, {:.6g} {} ({:.3g} %) along the line, at {}", *failure.point,
                     units.Length(along_m), units.length(),
                     length_m > 0.0 ? 100.0 * along_m / length_m : 0.0, pose);
}

std::string FailureText(const classic::Failure& failure, const classic::Ends& ends,
                        const Units& units) {
  const std::string reason = ErrorText(failure.error, units.text());
  const std::string place = PlaceOf(failure, ends, units);
  if (place.empty()) return reason;
  switch (failure.error.reason) {
    case Reason::kOutOfReach:
    case Reason::kJointRange:
    case Reason::kStepBound:
      return fmt::format("no solution {}: {}", place, reason);
    default:
      return fmt::format("{}: {}", place, reason);
  }
}

void ExpectWithin(const PlanOptions& options, const Verdict& verdict) {
  if (const int exceeded = verdict.Exceeded(); options.strict && exceeded > 0) {
    throw Failure(fmt::format("{} of the arm's limits exceeded", exceeded));
  }
}

}  // namespace

double LengthOf(const FileTrajectory& plan) {
  double length_m = 0.0;
  for (size_t i = 1; i < plan.size(); ++i) {
    length_m += Distance(plan[i - 1].pose->position, plan[i].pose->position);
  }
  return length_m;
}

std::string SizeRows(const FileTrajectory& plan, double length_m, const Units& units) {
  return ValueRow("points", std::to_string(plan.size())) +
         ValueRow("duration [s]", Decimal(plan.back().time_s, 3)) +
         ValueRow(fmt::format("TCP path length [{}]", units.length()),
                  Decimal(units.Length(length_m), LengthDecimals(units)));
}

std::string EndRows(const FileTrajectory& plan, const Units& units) {
  const auto rows = [&](const FileSample& sample) {
    return StateRows({sample.joints, *sample.pose}, units);
  };
  return "first point\n" + rows(plan.front()) + "last point\n" + rows(plan.back());
}

std::string Summary(const FileTrajectory& plan, const Arm& arm, const Units& units) {
  const Peaks errors = Measure(plan, arm)[kPositionError];
  return SizeRows(plan, LengthOf(plan), units) +
         ValueRow(fmt::format("FK position error [{}]", units.length()),
                  fmt::format("{:.3g}", units.Length(errors[0]->value))) +
         EndRows(plan, units);
}

void WritePlan(const PlanOptions& options, const LoadedArm& loaded, const FileTrajectory& plan,
               const std::string& answer, const Json& json, const std::string& name,
               const ReportProgram& program) {
  const auto& [arm_option, units, output] = options.common;
  const std::string& title = name.empty() ? options.report.title() : name;
  const Arm& arm = loaded.arm;
  const Verdict verdict = Judge(plan, arm);
  Json all = {{"arm", ArmJson(loaded)}, {"verdict", VerdictJson(verdict)}};
  all.update(json);
  if (options.report.given()) {
    const Findings findings = FindingsOf(loaded, {plan, {}}, LimitsOf(arm), options.strict);
    options.report.Write(loaded, {"", title, {{title, findings, program}}});
  }
  output.Write(
      output.json() ? all.dump() + '\n' : ArmRow(loaded) + answer + VerdictRows(verdict, units),
      plan, arm);
  NoteExceeded(verdict, units);
  ExpectWithin(options, verdict);
}

void ExpectWithinLimits(const PlanOptions& options, const FileTrajectory& plan, const Arm& arm) {
  if (options.strict) ExpectWithin(options, Judge(plan, arm));
}

FileTrajectory PlanClassic(const EndOptions& ends, const PlanOptions& options,
                           const Planner& planner, const Arm& arm) {
  const classic::Ends read = ends.Read(options.common.units, arm);
  const classic::Plan plan = planner(arm, read, options.Listener());
  if (!plan) throw Failure(FailureText(plan.error(), read, options.common.units));
  return FromStates(*plan, arm.cycle_s().value);
}

void RunClassic(const EndOptions& ends, const PlanOptions& options, const Planner& planner) {
  const LoadedArm loaded = options.common.arm->Load();
  const FileTrajectory plan = PlanClassic(ends, options, planner, loaded.arm);
  WritePlan(options, loaded, plan, Summary(plan, loaded.arm, options.common.units), ToJson(plan));
}

}  // namespace qal::tools
