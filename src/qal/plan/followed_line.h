#ifndef QAL_PLAN_FOLLOWED_LINE_H_
#define QAL_PLAN_FOLLOWED_LINE_H_

#include <optional>
#include <vector>

#include "joint_path.h"
#include "line.h"
#include "line_path.h"
#include "wrist_pass.h"

// Internal: a line as far as joints can follow it, whatever the time that takes.
namespace qal {

struct FollowedLine {
  LinePath line;
  State start;
  JointPath joints = {};  ///< its parameter goes from 0 to 1; empty for a line that is none
  std::vector<WristPass> passes = {};
  std::optional<PlanFailure> failure = {};  ///< none: it can be followed to its end

  bool moves() const { return joints.size() > 0; }
};

/// What `PlanLine` does before it plans the motion, with its failures.
FollowedLine FollowLine(const Arm& arm, const State& from, const Pose& to,
                        const LineLimits& limits);

}  // namespace qal

#endif  // QAL_PLAN_FOLLOWED_LINE_H_
