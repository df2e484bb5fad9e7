#ifndef QAL_IO_REPORT_HTML_H_
#define QAL_IO_REPORT_HTML_H_

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "json.h"
#include "report_motion.h"
#include "report_page.h"

namespace qal::io {

/// Samples that a report shows at the most, of all its motions: what a browser can open.
constexpr size_t kMostReportSamples = 1000000;

/// What a report shows.
// NOLINTNEXTLINE(bugprone-exception-escape): moving it moves JSON, which doesn't throw
struct Report {
  std::string tool;                        ///< who writes it, and in which version
  std::string title;                       ///< what it is about
  std::vector<ReportMotion> motions = {};  ///< up to two: the second is shown beside the first
  Json explanation = {};                   ///< why there is no motion, or how good it is
};

/// @throw UsageError when motions are longer than a report can be
void ExpectReportSize(const std::vector<ReportMotion>& motions);

/// The data of the page: docs/report.md.
/// @param progress is told how many of the motions' samples are done, now and then
/// @throw as `ReportArmJson` and `ReportMotionJson`
Json ReportJson(const LoadedArm& loaded, const Report& report,
                const std::function<void(size_t done)>& progress = {});

/// Whether the tools were built with the page.
/// @throw UsageError when they were not: what to install
void ExpectReportPage(std::string_view page = ReportPage());

/// The page with its data. Whatever names and texts are in the data, none of it is markup or ends
/// the script that it stands in.
/// @throw as ExpectReportPage
std::string ReportHtml(const Json& data, std::string_view page = ReportPage());

}  // namespace qal::io

#endif  // QAL_IO_REPORT_HTML_H_
