#ifndef QAL_IO_REPORT_ARM_H_
#define QAL_IO_REPORT_ARM_H_

#include <qal/model/chain.h>

#include <array>

#include "json.h"
#include "loaded_arm.h"

namespace qal::io {

/// An arm with all joints at zero, by which it can be drawn in any pose [m, base frame].
struct ArmAtZero {
  std::array<AxisLine, 6> axes;
  Pose tool;
};

/// From the Jacobian at zero, whatever the solver.
/// @return the solver's error where it gives no pose of these joints
Result<ArmAtZero> AtZero(const Arm& arm);

/// The same as JSON: `axes`, each with `point_m` and `direction`, and `tool` with `position_m` and
/// `wxyz`.
Json AtZeroJson(const ArmAtZero& arm);

/// An arm for the report's page: what its joints may do, its axes and tool, and what it looks like.
/// @throw Failure when the solver gives no pose of these joints: the arm can't be drawn
Json ReportArmJson(const LoadedArm& loaded);

}  // namespace qal::io

#endif  // QAL_IO_REPORT_ARM_H_
