#include "output.h"

#include <CLI/CLI.hpp>

#include "../../io/error.h"
#include "../../io/files.h"
#include "../../io/trajectory_csv.h"
#include "../common/values.h"

namespace qal::tools {

using namespace io;

void Output::AddTo(CLI::App& command, bool trajectory) {
  command.add_flag("--json", json_, "JSON instead of the table, always in rad and m");
  CLI::Option* csv = TakesFile(
      command.add_option(
          "--csv", csv_,
          "also write a CSV file, always in s, rad and m;\n-: on standard output instead"),
      "*.csv");
  if (!trajectory) return;
  command.add_flag("--full", full_, "with --csv: speeds, accelerations and motor speeds as well")
      ->needs(csv);
}

void Output::Write(const std::string& data, const std::function<std::string()>& csv) const {
  // By its name as well: written as a file, it could be one that standard output goes to.
  if (csv_ == "-" || csv_ == "/dev/stdout") {
    if (json_) throw UsageError("--csv - and --json: only one of them can have standard output");
    WriteStandardOutput(csv());
    return;
  }
  if (!csv_.empty()) WriteFile(csv_, csv());
  WriteStandardOutput(data);
}

void Output::AddTrajectoryTo(CLI::App& command) {
  command.add_flag("--json", json_, "JSON instead of the table, always in rad and m");
  trajectory_.AddTo(command, "-o,--out");
}

void Output::Check() const {
  if (!trajectory_.given()) return;
  trajectory_.Check();
  if (trajectory_.to_standard_output() && json_) {
    throw UsageError("-o - and --json: only one of them can have standard output");
  }
}

void Output::Write(const std::string& data, const FileTrajectory& trajectory,
                   const Arm& arm) const {
  if (!trajectory_.given()) {
    return Write(data, [&] { return full_ ? ToFullCsv(trajectory, arm) : ToCsv(trajectory); });
  }
  trajectory_.Write(trajectory, arm, JointNamesOf(arm));
  if (!trajectory_.to_standard_output()) WriteStandardOutput(data);
}

void CommonOptions::AddTo(CLI::App& command, const std::shared_ptr<ArmOption>& shared_arm,
                          bool trajectory) {
  arm = shared_arm;
  arm->AddTo(command);
  units.AddTo(command);
  output.AddTo(command, trajectory);
}

}  // namespace qal::tools
