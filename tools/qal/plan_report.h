#ifndef QAL_TOOLS_QAL_PLAN_REPORT_H_
#define QAL_TOOLS_QAL_PLAN_REPORT_H_

#include "../../io/report_motion.h"
#include "plan_summary.h"

namespace qal::tools {

/// Each step and rounded corner, for a report.
/// @param arm that the program was planned for
io::ReportProgram ProgramOfReport(const PlannedProgram& planned, const Arm& arm);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_PLAN_REPORT_H_
