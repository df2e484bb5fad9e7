#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "../../io/error.h"
#include "../../io/files.h"
#include "../common/values.h"
#include "commands.h"
#include "limit_options.h"
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

void RunReport(const ReportArguments& a) {
  a.out.Check();
  const std::vector<std::string> paths = PathsOf(a);
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
      "report", "A page that plays a trajectory file, with its curves and the verdict on it");
  arguments->in.AddTo(*report, "FILE");
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
      "Exit status: 0 when the page is written, whatever the verdict; qal verify --report FILE\n"
      "writes the same page, and its exit status is the verdict's.\n"
      "Example: qal report planned.csv -o planned.html");
  report->callback([arguments] { RunReport(*arguments); });
}

}  // namespace qal::tools
