#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <set>

#include "../../io/error.h"
#include "../../io/files.h"
#include "../../io/report_reach.h"
#include "../common/values.h"
#include "../common/version.h"
#include "commands.h"
#include "limit_options.h"
#include "reach_summary.h"
#include "report_option.h"
#include "trajectory_input.h"

namespace qal::tools {

using namespace io;

namespace {

struct ReportArguments {
  TrajectoryInput in;
  std::string other;
  SharedArm arm;
  LimitOptions limits;
  ReportOption out;
};

// The files that are shown.
std::vector<std::string> PathsOf(const ReportArguments& a) {
  std::vector<std::string> paths = {a.in.path()};
  if (!a.other.empty()) paths.push_back(a.other);
  if (a.out.path() != "-") ExpectOtherFile(a.out.path(), paths);
  if (paths.size() == 2 && paths[0] == "-" && paths[1] == "-") {
    throw UsageError("standard input has one file; the name of the other is expected");
  }
  return paths;
}

// Options that a reach study has no use for.
void ExpectNoneOfTrajectories(const CLI::App& command, const std::string& study) {
  for (const CLI::Option* option : command.get_options()) {
    const std::set<std::string> kOfStudies = {"FILE", "--out", "--arm", "--base", "--tip"};
    const std::string name = option->get_name();
    if (option->count() == 0 || kOfStudies.count(name) > 0) continue;
    throw UsageError(fmt::format("{} is of trajectories, and {} is a reach study", name, study));
  }
}

void ReportStudy(const ReportArguments& a, const std::string& path) {
  const LoadedArm looks = a.arm->Load();
  const ReachFile file = ReadReachFile(path);
  a.out.Write(ReportReachJson(
      {VersionOf("qal"), FileTitle(path), path, file, ReachSummaryJson(file)}, looks));
}

void RunReport(const ReportArguments& a, const CLI::App& command) {
  a.out.Check();
  const std::vector<std::string> paths = PathsOf(a);
  if (const auto study = std::find_if(paths.begin(), paths.end(), LooksLikeHdf5);
      study != paths.end()) {
    ExpectNoneOfTrajectories(command, *study);
    return ReportStudy(a, *study);
  }
  const LoadedArm loaded = a.arm->Load();
  const Limits limits = a.limits.Read(loaded.arm);
  Report report;
  for (const std::string& path : paths) {
    const std::string title = FileTitle(NameOf(path));
    report.title += (report.title.empty() ? "" : ", ") + title;
    LocatedTrajectory trajectory = a.in.Read(loaded.arm, path);
    report.motions.push_back(
        {title, FindingsOf(loaded, std::move(trajectory), limits, a.limits.strict())});
  }
  a.out.Write(loaded, std::move(report));
}

}  // namespace

void AddReport(CLI::App& app, const SharedArm& arm) {
  const auto arguments = std::make_shared<ReportArguments>();
  CLI::App* report = app.add_subcommand(
      "report",
      "A page that plays a trajectory file, with its curves and the verdict on it; or that shows a "
      "reach study");
  arguments->in.AddTo(*report, "FILE", "trajectory, or reach study (HDF5),",
                      std::string(kTrajectoryFiles) + " *.h5");
  TakesFile(report->add_option("OTHER", arguments->other,
                               "another trajectory of the arm, shown beside it"),
            kTrajectoryFiles);
  arguments->out.AddOutputTo(*report);
  arguments->arm = arm;
  arm->AddTo(*report);
  arguments->limits.AddTo(*report);
  report->footer(
      "One HTML file that needs nothing else, neither network nor installation. The arm is drawn\n"
      "from its description, with the meshes of a URDF where they are STL files on disk. The\n"
      "verdict is that of qal verify, by the same options.\n"
      "Of a reach study the page shows the cells, by slices and surfaces, and the study's arm as "
      "it\n"
      "best reaches each; with the meshes of --arm, where that is the same arm.\n"
      "Exit status: 0 when the page is written, whatever the verdict; qal verify --report FILE\n"
      "writes the same page, and its exit status is the verdict's.\n"
      "Example: qal report planned.csv -o planned.html");
  report->callback([arguments, report] { RunReport(*arguments, *report); });
}

}  // namespace qal::tools
