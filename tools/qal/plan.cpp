#include <fmt/format.h>
#include <qal/model/rotations.h>
#include <qal/plan/program.h>
#include <qal/plan/sampled.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "../../io/error.h"
#include "../../io/plan_text.h"
#include "../../io/program_file.h"
#include "../../io/trajectory_json.h"
#include "../common/progress.h"
#include "../common/values.h"
#include "limited.h"
#include "plan_arguments.h"
#include "plan_report.h"
#include "plan_summary.h"

namespace qal::tools {

using namespace io;

const char* WayOf(const ProgramStep& step) {
  if (std::holds_alternative<LineStep>(step)) return "line";
  return std::holds_alternative<ArcStep>(step) ? "arc" : "move";
}

namespace {

PlannedProgram Planned(const std::string& path, const Arm& arm, const Units& units) {
  ProgramFile file = ReadProgram(path, arm);
  const Progress progress;
  const auto motion = PlanProgram(arm, file.program, [&](size_t planned) {
    progress.Show(fmt::format("qal plan: {} of {} steps", planned, file.places.size()));
  });
  if (motion) return {std::move(file), *motion};
  const auto& [failure, step] = motion.error();
  throw Failure(
      fmt::format("{}: {}", file.Place(step),
                  RefusalText(failure, WayOf(file.program.steps[step]), "program", units)));
}

// The length of the tool's way. Another tool is elsewhere at once, which is no way: what lies about
// there, where the arm stands still, is left out.
double WayLength(const FileTrajectory& samples, const PlannedProgram& planned) {
  double length_m = LengthOf(samples);
  const std::vector<double>& begins_s = planned.motion.step_begins_s();
  size_t i = 1;
  for (size_t step = 0; step < begins_s.size(); ++step) {
    if (!std::holds_alternative<ToolStep>(planned.file.program.steps[step])) continue;
    while (i < samples.size() && samples[i].time_s < begins_s[step]) ++i;
    for (; i < samples.size() && samples[i - 1].time_s <= begins_s[step]; ++i) {
      length_m -= Distance(samples[i - 1].pose->position, samples[i].pose->position);
    }
  }
  return length_m;
}

void RunPlan(const PlanArguments& a) {
  const Units& units = a.plan.common.units;
  a.plan.common.output.Check();
  a.plan.report.Check();
  const LoadedArm loaded = a.plan.common.arm->Load();
  const PlannedProgram planned = Planned(a.program, loaded.arm, units);
  auto trajectory = Sampled(loaded.arm, planned.motion);
  if (!trajectory) {
    throw Failure(fmt::format("{}: {}", planned.file.name,
                              PlanFailureText(trajectory.error(), "program", units.text())));
  }
  const LimitedMotion motion = {*std::move(trajectory), planned.motion.bindings()};
  const FileTrajectory samples = FromTrajectory(motion.samples);
  const double length_m = WayLength(samples, planned);
  Json json = {{"duration_s", samples.back().time_s}, {"length_m", length_m}};
  json.update(ProgramJson(planned));
  json["limited_by"] = LimitedByJson(motion);
  json.update(ToJson(samples));
  WritePlan(a.plan, loaded, samples,
            SizeRows(samples, length_m, units) + EndRows(samples, units) +
                ProgramRows(planned, units) + LimitedByRow(motion),
            json, FileTitle(planned.file.name), ProgramOfReport(planned, loaded.arm));
  if (const size_t outside = CornersOutsideOfZones(planned); outside > 0) {
    throw Failure(fmt::format("{} corners are outside of their zones", outside));
  }
}

}  // namespace

void PlanArguments::AddTo(CLI::App& plan_command, const SharedArm& arm) {
  TakesFile(
      plan_command.add_option("PROGRAM", program, "program in TOML or JSON; -: standard input"),
      kProgramFiles)
      ->required();
  plan.common.arm = arm;
  arm->AddTo(plan_command);
  plan.common.units.AddTo(plan_command);
  plan.common.output.AddTrajectoryTo(plan_command);
  plan.AddJudgingTo(plan_command);
}

void AddPlan(CLI::App& app, const SharedArm& arm) {
  const auto arguments = std::make_shared<PlanArguments>();
  CLI::App* plan = app.add_subcommand(
      "plan",
      "A whole program: joint moves, lines and arcs, corners passed without a stop, within every "
      "limit");
  arguments->AddTo(*plan, arm);
  plan->footer(
      "docs/programs.md describes the file's keys: points, limits, zones and steps.\n"
      "Numbers of the program are in the units that its keys name; --deg and --mm are for the\n"
      "table alone.\n"
      "Example: qal plan examples/welding_seam.toml -o seam.csv");
  plan->callback([arguments] { RunPlan(*arguments); });
}

}  // namespace qal::tools
