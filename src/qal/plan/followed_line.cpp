#include "followed_line.h"

#include "../solve/solver_calls.h"
#include "path_failure.h"
#include "path_motion.h"

namespace qal {

FollowedLine FollowLine(const Arm& arm, const State& from, const Pose& to,
                        const LineLimits& limits) {
  const auto start = Forward(arm, from.joints);
  const Pose begin = start ? *start : from.pose;
  FollowedLine followed = {LinePath(begin, to, 1), {from.joints, begin}};
  const auto refused = [&followed](const Error& error) {
    followed.failure = PlanFailure{error, 0, followed.start};
    return followed;
  };
  if (!start) return refused(start.error());
  if (const auto limit = RefusedLimits(limits)) return refused(*limit);
  if (const auto pose = RefusedPose(to)) return refused(*pose);
  const auto screws = Screws::Of(arm, from.joints);
  if (!screws) return refused(screws.error());

  const LinePath& line = followed.line;
  // A line of less is nothing that a motor does.
  constexpr double kNothing = 1e-12;
  if (!(line.length_m() > kNothing || line.angle_rad() > kNothing)) return followed;
  const auto first = ToolSolver(*screws, line, 0).Solve(0, from.joints);
  if (!first) {
    followed.failure = NoWayOn(arm, line, 0, {0, from.joints, {}, {}, {}});
    return followed;
  }
  followed.joints = JointPath(*first);
  followed.failure = FollowTool(arm, *screws, {line, 0, 0, 1}, limits.max_orientation_error_rad,
                                followed.joints, followed.passes);
  if (!followed.failure) followed.failure = LeavesRange(arm, followed.joints);
  return followed;
}

}  // namespace qal
