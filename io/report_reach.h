#ifndef QAL_IO_REPORT_REACH_H_
#define QAL_IO_REPORT_REACH_H_

#include <string>

#include "json.h"
#include "loaded_arm.h"
#include "reach_file.h"

namespace qal::io {

/// Cells that a report shows at the most: what a browser can open.
constexpr size_t kMostReportCells = 1000000;

/// A reach study to be shown.
// NOLINTNEXTLINE(bugprone-exception-escape): moving it moves JSON, which doesn't throw
struct ReportReach {
  std::string tool;   ///< who writes the report, and in which version
  std::string title;  ///< what it is about
  std::string name;   ///< of the file, for messages
  ReachFile file;
  Json summary;  ///< what the study comes to, as `qal reach --json` has it
};

/// Whether a file looks like HDF5, by its name or its first bytes. What it holds is another matter.
bool LooksLikeHdf5(const std::string& path);

/// The data of a reach study's page: docs/reach.md.
/// @param looks the arm whose looks are drawn, where it is the study's
/// @throw UsageError "NAME: ..." when the file isn't a whole study, has more cells than can be
///        shown, or doesn't say where the arm's axes are
Json ReportReachJson(const ReportReach& report, const LoadedArm& looks);

}  // namespace qal::io

#endif  // QAL_IO_REPORT_REACH_H_
