#ifndef QAL_IO_REPORT_ARM_H_
#define QAL_IO_REPORT_ARM_H_

#include "json.h"
#include "loaded_arm.h"

namespace qal::io {

/// An arm for the report's page: what its joints may do, and its axes and tool with all joints at
/// zero, from the Jacobian there, whatever the solver.
/// @throw Failure when the solver gives no pose of these joints: the arm can't be drawn
Json ReportArmJson(const LoadedArm& loaded);

}  // namespace qal::io

#endif  // QAL_IO_REPORT_ARM_H_
