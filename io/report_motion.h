#ifndef QAL_IO_REPORT_MOTION_H_
#define QAL_IO_REPORT_MOTION_H_

#include <functional>
#include <string>
#include <vector>

#include "findings.h"
#include "json.h"

namespace qal::io {

/// What a program says about its motion.
struct ReportProgram {
  struct Step {
    double begin_s;
    std::string name;
  };
  /// A corner that is passed without a stop.
  struct Corner {
    size_t step;  ///< from 0, the one that ends there
    Vec3 position;
    double radius_m;     ///< how far from the corner the motion leaves the steps' own ways
    double deviation_m;  ///< how far from the steps' own ways it gets
    double begin_s;
    double end_s;
  };
  std::vector<Step> steps;
  std::vector<Corner> corners;
};

/// A motion to be shown, measured and judged.
struct ReportMotion {
  std::string name;
  Findings findings;
  ReportProgram program = {};  ///< empty: of none
};

/// A motion for the report's page: the numbers of every sample, and the verdict of its findings.
/// @param progress is told how many samples are done, now and then
/// @throw as ExpectOrder and SeriesOf
Json ReportMotionJson(const ReportMotion& motion,
                      const std::function<void(size_t done)>& progress = {});

/// @throw Failure "NAME: sample N: ..." where the time goes back, which can be neither played nor
///        drawn
void ExpectOrder(const std::string& name, const LocatedTrajectory& trajectory);

/// Whether a motion keeps every limit, and where it exceeds one most, in one line.
std::string VerdictHeadline(const Findings& findings);

/// Whether a motion keeps every limit, and what is measured on it.
Json ReportVerdictJson(const Findings& findings);

}  // namespace qal::io

#endif  // QAL_IO_REPORT_MOTION_H_
