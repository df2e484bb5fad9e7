#ifndef QAL_EXPLAIN_EXPLAIN_H_
#define QAL_EXPLAIN_EXPLAIN_H_

/// @file
/// Why a pose, a line, a joint move or a program fails, and what would make it work.

#include <functional>
#include <vector>

#include "../plan/joint_move.h"
#include "../plan/line.h"
#include "../plan/program.h"
#include "../solve/kinematics.h"
#include "explanation.h"

namespace qal {

/// Why a pose has no admissible solution: explains `Nearest`, and takes what it takes.
QAL_API Explanation ExplainPose(const Arm& arm, const Pose& pose, const Joints& near,
                                const InverseOptions& options = {});

/// One of poses that are to be passed.
struct TimedPose {
  Pose pose;      ///< of the tool, in the base frame
  double time_s;  ///< increasing
};

/// Why poses can't be passed one after the other, each by the admissible solution nearest the one
/// before, the first nearest `near` [rad]. From the second one on no joint may be quicker than its
/// arm's velocity or go further than `options` say.
QAL_API Explanation ExplainPoses(const Arm& arm, const std::vector<TimedPose>& poses,
                                 const Joints& near, const InverseOptions& options = {});

/// Why `PlanLine` has no motion.
QAL_API Explanation ExplainLine(const Arm& arm, const State& from, const Pose& to,
                                const LineLimits& limits = {});

/// What became of a line that is planned in another way.
struct LineAttempt {
  std::optional<PlanFailure> failure;  ///< none: there is a motion
  std::optional<size_t> point = {};    ///< the failing sample, if it is known
  double duration_s = 0;               ///< of the motion
};
/// Another way to plan a line, from joints to a pose [base frame]. `speed`, of 0 to 1, is the part
/// of the asked speed to plan with.
using LinePlanner =
    std::function<LineAttempt(const Arm& arm, const State& from, const Pose& to, double speed)>;

/// Why a line that is planned in another way has no motion.
/// @param arm     the arm
/// @param from    the joints at the start [rad], with their pose
/// @param to      the pose at the end [base frame]
/// @param planner is called some hundred times at most
QAL_API Explanation ExplainLine(const Arm& arm, const State& from, const Pose& to,
                                const LinePlanner& planner);

/// Why there is no joint move from rest to rest.
QAL_API Explanation ExplainJoint(const Arm& arm, const Joints& from, const Target& to,
                                 const JointLimits& limits = {});

/// Why a program has no motion.
struct ProgramExplanation {
  size_t step = 0;       ///< from 0: the one that fails
  Joints start = {};     ///< where the step begins
  Explanation why = {};  ///< of this step; its changes were tried in the program
  /// The program with a change: what each of `why.changes` makes of it.
  std::vector<Program> changed = {};
};
/// Why a program has no motion: at the first step that fails.
QAL_API ProgramExplanation ExplainProgram(const Arm& arm, const Program& program);

/// A line with one of its start configurations.
struct BranchAudit {
  Joints start;                             ///< [rad]
  std::optional<Branch> branch;             ///< none: this arm's have no names
  std::optional<PlanFailure> failure = {};  ///< none: the line is completed
  double duration_s = 0;                    ///< of the motion, where there is one
  double smallest_margin_rad = 0;  ///< of a joint from a limit of its range; infinity: it has none
  int joint = -1;                  ///< whose that is, from 0
  double smallest_singular_value = 0;  ///< of the Jacobian, in metres and radians
};

/// Which of the admissible solutions of a line's start complete it, the quickest first and those
/// that don't behind.
/// @param arm    the arm
/// @param from   its joints say what the start's pose is, and which turns are nearest
/// @param to     the pose at the end [base frame]
/// @param limits of each line
QAL_API std::vector<BranchAudit> AuditBranches(const Arm& arm, const State& from, const Pose& to,
                                               const LineLimits& limits = {});

}  // namespace qal

#endif  // QAL_EXPLAIN_EXPLAIN_H_
