#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "../../io/error.h"
#include "../../io/files.h"
#include "commands.h"
#include "findings.h"
#include "limit_options.h"
#include "report_option.h"
#include "trajectory_input.h"

namespace qal::tools {

using namespace io;

namespace {

struct VerifyArguments {
  TrajectoryInput in;
  SharedArm arm;
  LimitOptions limits;
  ReportOption report;
  bool json = false;
};

void RunVerify(const VerifyArguments& arguments) {
  arguments.report.Check();
  const LoadedArm loaded = arguments.arm->Load();
  const Limits limits = arguments.limits.Read(loaded.arm);
  const Findings findings =
      FindingsOf(loaded, arguments.in.Read(loaded.arm), limits, arguments.limits.strict());
  const std::string name = arguments.in.name();
  if (arguments.report.given()) {
    const std::string title = FileTitle(name);
    arguments.report.Write(loaded, {"", title, {{title, findings}}});
  }
  WriteStandardOutput(arguments.json ? FindingsJson(findings, name).dump(2) + '\n'
                                     : FindingsText(findings, name));
  if (findings.violations.empty()) return;
  throw Failure(fmt::format("{}: {} violation{}", name, findings.violations.size(),
                            findings.violations.size() == 1 ? "" : "s"));
}

}  // namespace

void AddVerify(CLI::App& app, const SharedArm& arm) {
  const auto arguments = std::make_shared<VerifyArguments>();
  CLI::App* verify = app.add_subcommand(
      "verify",
      "Measure a trajectory file, from here or elsewhere, and hold it against the arm's limits");
  arguments->in.AddTo(*verify, "FILE");
  arguments->arm = arm;
  arm->AddTo(*verify);
  arguments->limits.AddTo(*verify);
  verify->add_flag("--json", arguments->json, "JSON instead of the table");
  arguments->report.AddTo(*verify);
  verify->footer(
      "Time and joints are enough. Without an option a file is held against its arm: range, "
      "speed,\n"
      "acceleration and jerk of the joints. A limit that nobody described is assumed; to be beyond "
      "it\n"
      "is a note, with --strict a violation. An option takes the place of one limit.\n"
      "Where the file has speeds and accelerations, between two samples a joint follows the\n"
      "polynomial of degree five through both; jerk is the change of acceleration over the time.\n"
      "Speeds have to agree with the joints and accelerations with the speeds, as far as steps of\n"
      "acceleration and jerk between samples leave it open, and the motion is to begin and end at\n"
      "rest. Without them, speeds are the differences of the samples over their time, "
      "accelerations\n"
      "those of the speeds, jerks those of the accelerations; the arm stands before the first "
      "sample\n"
      "and after the last. Motor speeds follow from the joint speeds by the arm's gear ratios; "
      "without\n"
      "a pose in the file, the tool is where the joints put it. What lies between two samples is "
      "said\n"
      "at the later one; samples count from 0.\n"
      "A time that is repeated or goes back is always a violation.\n"
      "Exit status: 0 within all limits, 1 with a violation, 2 when the file cannot be read.\n"
      "Example: qal verify planned.csv --max-motor-rpm 3000 --max-joint-acc 8,8,8,12,12,12");
  verify->callback([arguments] { RunVerify(*arguments); });
}

}  // namespace qal::tools
