#ifndef QAL_PLAN_WRIST_PASS_H_
#define QAL_PLAN_WRIST_PASS_H_

#include <optional>
#include <vector>

#include "motion.h"
#include "path_follower.h"

// Internal: paths past wrist singularities.
namespace qal {

/// A stretch of a path on which the tool's centre is on the path, but its orientation is off it, so
/// that the wrist's joints need not turn about: joints 4 to 6 go straight from one place to another
/// beyond the singularity, with the wrist flipped.
struct WristPass {
  double begin;
  double end;
  double orientation_error_rad;  ///< the largest on the stretch
};

/// A path of the tool as a part of a longer path.
struct PlacedPath {
  const ToolPath& tool;
  double begin;  ///< where the tool's path begins
  double after;  ///< a stretch begins here at the earliest
  double end;    ///< and ends here at the latest
};

/// Leads a path past the place where the wrist is nearest to its singularity, if that is possible
/// within an orientation error, on the longest stretch that allows.
/// @param joints in/out: the path as far as it could be followed; cut where the stretch begins, and
///               led on to where it ends. Without a pass they are left as they are
std::optional<WristPass> PassWrist(const Arm& arm, const Screws& screws, const PlacedPath& path,
                                   double max_error_rad, JointPath& joints);

/// Follows a path of the tool to its end, past wrist singularities where that is allowed.
/// @param joints in/out: up to where to go on from
/// @param passes the stretches off the path are appended
std::optional<PlanFailure> FollowTool(const Arm& arm, const Screws& screws, const PlacedPath& path,
                                      double max_error_rad, JointPath& joints,
                                      std::vector<WristPass>& passes);

}  // namespace qal

#endif  // QAL_PLAN_WRIST_PASS_H_
