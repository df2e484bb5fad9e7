#include "report_html.h"

#include <fmt/format.h>

#include "error.h"
#include "report_arm.h"

namespace qal::io {

namespace {

constexpr std::string_view kMark = "@QAL_REPORT_DATA@";

// JSON in which nothing is left that means something to HTML. These characters, and those beyond
// ASCII, are in texts alone.
std::string ScriptText(const Json& data) {
  const std::string json = data.dump(-1, ' ', true, Json::error_handler_t::replace);
  std::string text;
  text.reserve(json.size());
  for (const char c : json) {
    if (c == '<' || c == '>' || c == '&') {
      text += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
    } else {
      text += c;
    }
  }
  return text;
}

}  // namespace

void ExpectReportSize(const std::vector<ReportMotion>& motions) {
  size_t samples = 0;
  for (const ReportMotion& motion : motions) samples += motion.findings.trajectory.samples.size();
  if (samples <= kMostReportSamples) return;
  throw UsageError(fmt::format("{} samples; a browser can open a report of {} at the most", samples,
                               kMostReportSamples));
}

Json ReportJson(const LoadedArm& loaded, const Report& report,
                const std::function<void(size_t done)>& progress) {
  ExpectReportSize(report.motions);
  Json motions = Json::array();
  size_t before = 0;
  for (const ReportMotion& motion : report.motions) {
    motions.push_back(ReportMotionJson(motion, [&](size_t done) {
      if (progress) progress(before + done);
    }));
    before += motion.findings.trajectory.samples.size();
  }
  return {{"format", "qal-report-1"},      {"tool", report.tool},
          {"title", report.title},         {"arm", ReportArmJson(loaded)},
          {"motions", std::move(motions)}, {"explanation", report.explanation}};
}

void ExpectReportPage(std::string_view page) {
  if (!page.empty()) return;
  throw UsageError(
      "this build has no report page; install nodejs and npm, then build with "
      "-DQAL_BUILD_REPORT=ON");
}

std::string ReportHtml(const Json& data, std::string_view page) {
  ExpectReportPage(page);
  const size_t mark = page.find(kMark);
  if (mark == std::string_view::npos) throw Failure("the report page has no place for its data");
  std::string html(page.substr(0, mark));
  html += ScriptText(data);
  html += page.substr(mark + kMark.size());
  return html;
}

}  // namespace qal::io
