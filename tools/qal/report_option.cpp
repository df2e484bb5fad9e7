#include "report_option.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <filesystem>

#include "../../io/error.h"
#include "../../io/files.h"
#include "../../io/messages.h"
#include "../common/progress.h"
#include "../common/values.h"
#include "../common/version.h"
#include "tables.h"

namespace qal::tools {

using namespace io;

std::string FileTitle(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

void ExpectOtherFile(const std::string& written, const std::vector<std::string>& shown) {
  for (const std::string& path : shown) {
    if (path == "-" || !SameFile(path, written)) continue;
    throw UsageError(fmt::format("{} is the file that is shown; -o would replace it", path));
  }
}

void ReportOption::AddTo(CLI::App& command) {
  title_ = "qal " + command.get_name();
  TakesFile(command.add_option(
                "--report", path_,
                "also write a page that shows the motion, its curves and the verdict, in HTML"),
            "*.html");
}

void ReportOption::AddOutputTo(CLI::App& command) {
  is_answer_ = true;
  title_ = "qal " + command.get_name();
  TakesFile(command.add_option("-o,--out", path_,
                               "page to write, whole or not at all; -: standard output"),
            "*.html")
      ->required();
}

void ReportOption::Check() const {
  if (!given()) return;
  ExpectReportPage();
  if (path_ == "-" && !is_answer_) {
    throw UsageError("--report: standard output has the answer; the name of a file is expected");
  }
}

void ReportOption::Write(const LoadedArm& loaded, Report report) const {
  if (!given()) return;
  Check();
  report.tool = VersionOf("qal");
  size_t samples = 0;
  for (const ReportMotion& motion : report.motions) {
    samples += motion.findings.trajectory.samples.size();
  }
  Json data;
  {
    const LateProgress progress;
    data = ReportJson(loaded, report, [&](size_t done) {
      progress.Show(fmt::format("report: {} of {} samples", done, samples));
    });
  }
  Write(data);
}

void ReportOption::Write(const Json& data) const {
  for (const Json& note : data.at("arm").at("notes")) Note(note.get<std::string>());
  const std::string html = ReportHtml(data);
  if (path_ == "-") return WriteStandardOutput(html);
  WriteFile(path_, html);
}

}  // namespace qal::tools
