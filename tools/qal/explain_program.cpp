#include <fmt/format.h>
#include <qal/explain/explain.h>
#include <qal/plan/program_stream.h>

#include <memory>

#include "../../io/program_edits.h"
#include "../common/progress.h"
#include "explain.h"
#include "limited.h"
#include "plan_arguments.h"
#include "program_way.h"

namespace qal::tools {

using namespace io;

namespace {

// A program's file as it was read.
struct AskedProgram {
  const Document& document;
  const ProgramFile& file;
  const Arm& arm;

  bool json() const { return !file.places.empty() && file.places.front().line == 0; }
};

// What each change is in the file, tried as it would be read: a step of a block changes in each
// repetition.
std::vector<Remedy> RemediesOf(const AskedProgram& asked, const ProgramExplanation& told,
                               const std::string& what, const Units& units) {
  std::vector<Remedy> remedies;
  for (size_t i = 0; i < told.changed.size(); ++i) {
    Change change = told.why.changes[i];
    Remedy remedy = {ChangeKey(change.kind), ""};
    const auto edits = EditsOf(asked.file, told.changed[i]);
    if (!edits.empty() && change.kind != Change::Kind::kShift) {
      const auto motion =
          PlanProgram(asked.arm, ReadEdited(asked.document, edits, asked.arm).program);
      if (!motion) continue;
      change.duration_s = motion->duration_s();
      remedy.keys = EditText(edits, asked.json());
    }
    remedy.text = ChangeText(change, what, units.text());
    remedies.push_back(std::move(remedy));
  }
  return remedies;
}

// The samples of a program up to where it comes to rest before what fails.
FileTrajectory PartThatWorks(const Arm& arm, const Program& program) {
  constexpr size_t kAtOnce = 1000;
  ProgramStream stream(arm, program);
  Trajectory all;
  while (true) {
    const auto samples = stream.Read(kAtOnce);
    if (!samples || samples->empty() || all.size() >= kMostReportSamples) break;
    all.insert(all.end(), samples->begin(), samples->end());
  }
  return FromTrajectory(all);
}

void RunExplainProgram(const PlanArguments& a) {
  const Units& units = a.plan.common.units;
  a.plan.report.Check();
  const LoadedArm loaded = a.plan.common.arm->Load();
  const Arm& arm = loaded.arm;
  const Document document = ReadProgramDocument(a.program);
  const ProgramFile file = ReadProgram(document, arm);
  const Progress progress;
  progress.Show("qal explain: planning " + file.name);
  const ProgramExplanation told = ExplainProgram(arm, file.program);
  ExplainedAnswer answer;
  ExplainedRequest& request = answer.request;
  request = {"program", told.why, std::nullopt, file.name};
  if (a.plan.report.given()) answer.motion = PartThatWorks(arm, file.program);
  request.path = WayOf(arm, file.program);
  if (told.why.works()) {
    const auto motion = PlanProgram(arm, file.program);
    if (motion) answer.rows = LimitedByRow({{}, motion->bindings()});
    return WriteExplained(a.plan.common, a.plan.report, loaded, answer);
  }
  if (told.step < file.program.steps.size()) {
    request.what = qal::tools::WayOf(file.program.steps[told.step]);
    request.place = file.Place(told.step);
  }
  request.before = BranchOf(arm, told.why.before);
  request.remedies = RemediesOf({document, file, arm}, told, request.what, units);
  progress.Show("");
  WriteExplained(a.plan.common, a.plan.report, loaded, answer);
}

}  // namespace

void AddExplainProgram(CLI::App& explain, const SharedArm& arm) {
  const auto arguments = std::make_shared<PlanArguments>();
  CLI::App* program = explain.add_subcommand("program", "Why qal plan has no motion of a program");
  program->alias("plan");
  arguments->AddTo(*program, arm);
  program->footer(
      "What is to be changed is told by the keys of the file, each tried in the whole program.\n"
      "Exit status: 0 the program works, 1 it fails.\n"
      "Example: qal explain program cell.toml");
  program->callback([arguments] { RunExplainProgram(*arguments); });
}

}  // namespace qal::tools
