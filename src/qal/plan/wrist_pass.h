#ifndef QAL_PLAN_WRIST_PASS_H_
#define QAL_PLAN_WRIST_PASS_H_

#include <optional>

#include "path_follower.h"

// Internal: lines past wrist singularities.
namespace qal {

/// A stretch of a line on which the tool's centre is on the line, but its orientation is off it, so
/// that the wrist's joints need not turn about: joints 4 to 6 go straight from one place to another
/// beyond the singularity, with the wrist flipped.
struct WristPass {
  double begin;
  double end;
  double orientation_error_rad;  ///< the largest on the stretch
};

/// Leads a line past the place where the wrist is nearest to its singularity, if that is possible
/// within an orientation error, on the longest stretch that allows.
/// @param after  the stretch begins here at the earliest
/// @param joints in/out: the line as far as it could be followed; cut where the stretch begins, and
///               led on to where it ends. Without a pass they are left as they are
std::optional<WristPass> PassWrist(const Arm& arm, const Screws& screws, const LinePath& line,
                                   double max_error_rad, double after, JointPath& joints);

}  // namespace qal

#endif  // QAL_PLAN_WRIST_PASS_H_
