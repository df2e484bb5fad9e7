#ifndef QAL_EXPLAIN_EXPLANATION_H_
#define QAL_EXPLAIN_EXPLANATION_H_

/// @file
/// What an explanation says: the cause, the place, the solutions there, changes that work.

#include <optional>
#include <vector>

#include "../plan/motion.h"
#include "../solve/branch.h"

namespace qal {

/// What keeps a pose from being reached, or a motion from being made.
enum class Cause {
  kNone,         ///< nothing, it works
  kRequest,      ///< a number of the request, as `error` says
  kOutOfReach,   ///< no joints have this pose; `way_back` says how far it is out
  kJointRange,   ///< every solution of a pose is outside the range; a motion's own leaves it
  kStepBound,    ///< every admissible solution is too far from the joints before
  kBranchEnds,   ///< the solution that the motion came along ends here; others go on
  kSingularity,  ///< joints would have to turn at once; see `speed`
  kLimit,        ///< a limit of speed or acceleration, as `error` says
  kSolver,       ///< the solver is at fault
};

/// A solution of the failing pose.
struct ExplainedSolution {
  Joints joints;                 ///< [rad]
  std::optional<Branch> branch;  ///< none: this arm's have no names
  double distance_rad;           ///< sum of the absolute differences to the joints before
  std::optional<Error> refusal;  ///< kJointRange or kStepBound; none: admissible
};

/// Where a motion first fails.
struct FailingPoint {
  Pose pose;  ///< of the tool, in the base frame
  /// Of the samples, from 0: the first one that fails. A line's are one cycle of the arm apart,
  /// with the tool as quick as its own limits let it be.
  size_t index = 0;
  double along = 0;       ///< the part of the way, 0 to 1
  double distance_m = 0;  ///< of the tool centre point, from the start
  double time_s = 0;      ///< from the start
};

/// How quickly a joint would have to turn.
struct NeededSpeed {
  int joint;             ///< from 0, the one that is beyond its limit by most
  double needed_rad_s;   ///< for the tool to keep its speed; at the singularity itself infinite
  double allowed_rad_s;  ///< the arm's, scaled
  double smallest_singular_value;  ///< of the Jacobian there, in metres and radians
};

/// A change of the request with which it works. Each was tried with exactly these numbers.
struct Change {
  /// What is changed, and which of the members below say to what.
  enum class Kind {
    kStart,  ///< begin with `joints`, another solution of the start's pose
    kEnd,    ///< end at `pose`, after the part `value` of the way; of a joint move, at `joints`
    kOrientation,  ///< end with the orientation of `pose`, `value` [rad] off the one asked for;
                   ///< of several poses, all of them turned as much
    kShift,        ///< all poses by `vector` [m, base frame], or the arm's base by the opposite;
                   ///< from `joints` to `pose`
    kTool,         ///< the tool centre point by `vector` [m, tool frame]; from `joints`
    kSpeed,        ///< `value` times the speed
    kStepBound,    ///< a step bound of `value` [rad]
    kOrientationError,  ///< `LineLimits::max_orientation_error_rad` of `value`
    kNoZone,            ///< a stop in place of the zone at the end of a program's step
    kJointMove          ///< a joint move to `joints`, which have the end's pose
  };
  Kind kind;  ///< what is changed
  /// To compare: of a shift and an end, its distance by the length of the way or 1 m; of turns
  /// [rad] by pi, of joints the largest difference by 2 pi, of a speed what is missing of 1. A
  /// joint move, which is another motion, counts as 1.
  double size = 0;
  Joints joints = {};                     ///< [rad], where `kind` names them
  Pose pose = {};                         ///< [base frame], where `kind` names it
  Vec3 vector = {};                       ///< [m], in the frame that `kind` names
  double value = 0;                       ///< a part, an angle or a bound, as `kind` says
  std::optional<double> duration_s = {};  ///< of the motion with this change
};

/// Why a request fails, and what would make it work.
struct Explanation {
  Cause cause = Cause::kNone;              ///< what it is, in a word
  Error error = {};                        ///< the reason with its numbers
  std::optional<FailingPoint> point = {};  ///< none: nothing fails, or the request has no place
  Joints before = {};                      ///< the last joints that work, or those to start with
  std::vector<ExplainedSolution> solutions = {};  ///< of the failing pose, the nearest first
  /// Out of reach: by how much, and which way back in, as the shortest shift [m, base frame] after
  /// which the pose, of a line its end, has a solution within the joints' range.
  std::optional<Vec3> way_back = {};
  std::optional<NeededSpeed> speed = {};  ///< at a singularity, or where speed is the limit
  std::vector<Change> changes = {};       ///< the smallest first, one of a kind
  std::optional<double> duration_s = {};  ///< where it works, of the motion

  /// Whether there is nothing to explain.
  bool works() const { return cause == Cause::kNone; }
};

}  // namespace qal

#endif  // QAL_EXPLAIN_EXPLANATION_H_
