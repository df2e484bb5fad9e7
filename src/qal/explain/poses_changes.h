#ifndef QAL_EXPLAIN_POSES_CHANGES_H_
#define QAL_EXPLAIN_POSES_CHANGES_H_

#include <functional>
#include <vector>

#include "causes.h"
#include "explain.h"

// Internal: poses passed one after the other, and what makes that work.
namespace qal {

/// Poses with a change.
struct PosesRequest {
  Arm arm;
  Joints near;
  double step_bound_rad;
  double speed = 1;                                  ///< the part of the asked speed
  std::function<Pose(const Pose&)> moved = nullptr;  ///< what becomes of each pose; none: nothing
};

/// How far joints may go to a pose from the one before; to the first one, any way.
StepBounds BoundsTo(const std::vector<TimedPose>& poses, size_t i, const PosesRequest& request);

/// The joints of the poses, up to the one that fails.
std::vector<Joints> PassedOf(const std::vector<TimedPose>& poses, const PosesRequest& request);

/// One change of each kind that helps. The smallest first.
std::vector<Change> PosesChanges(const std::vector<TimedPose>& poses, const PosesRequest& asked,
                                 size_t failing, Cause cause);

}  // namespace qal

#endif  // QAL_EXPLAIN_POSES_CHANGES_H_
