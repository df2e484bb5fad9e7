#ifndef QAL_PLAN_PROGRAM_H_
#define QAL_PLAN_PROGRAM_H_

/// @file
/// Programs of joint moves, lines and arcs, corners passed without a stop.

#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

#include "binding.h"
#include "line.h"
#include "motion.h"

namespace qal {

/// How near to a corner, the end of a step, the motion has to come to go on with the next step: the
/// corner is rounded within this, without a stop. Each is a distance from the corner, and all of
/// them hold; infinity is none. Both steps are left alone on their farther halves.
struct Zone {
  double tool_m = std::numeric_limits<double>::infinity();     ///< of the tool centre point
  double turn_rad = std::numeric_limits<double>::infinity();   ///< of the tool's orientation
  double joint_rad = std::numeric_limits<double>::infinity();  ///< of the joint farthest from there
};

/// Where a step ends: joints [rad], or a pose of the tool [base frame].
using Target = std::variant<Joints, Pose>;

/// All joints turn straight to their ends, in proportion to each other.
struct JointStep {
  Target to;                      ///< of a pose, the joints nearest those before
  LimitScale scale = {};          ///< how much of the joints' own limits to use
  std::optional<Zone> zone = {};  ///< none: the motion stops there
};

/// A straight line of the tool, as by `PlanLine`.
struct LineStep {
  Target to;                      ///< of joints, the pose that they have
  LineLimits limits = {};         ///< of tool and joints
  std::optional<Zone> zone = {};  ///< none: the motion stops there
};

/// How the tool turns along an arc.
enum class ArcTurn {
  kToEnd,    ///< about a fixed axis to the end's orientation, the shorter way, as along a line
  kWithArc,  ///< with the arc: its direction seen from the tool stays the same
  kFixed     ///< not at all
};

/// The arc from where the tool is through a point to an end, less than a full turn.
struct ArcThrough {
  Vec3 through;                    ///< [m, base frame]
  Target to;                       ///< its orientation counts for `ArcTurn::kToEnd` alone
  ArcTurn turn = ArcTurn::kToEnd;  ///< how the tool turns
};

/// The arc about a line.
struct ArcAbout {
  Vec3 centre;       ///< [m, base frame] a point on the line
  Vec3 axis;         ///< [base frame] its direction, of any length but 0
  double angle_rad;  ///< positive: counter-clockwise, seen with the axis pointing at the viewer
  ArcTurn turn = ArcTurn::kWithArc;  ///< not kToEnd, as there is no other end
};

/// A part of a circle.
struct ArcStep {
  std::variant<ArcThrough, ArcAbout> arc;  ///< which one
  LineLimits limits = {};                  ///< of tool and joints
  std::optional<Zone> zone = {};           ///< none: the motion stops there
};

/// The arm stands still.
struct WaitStep {
  double duration_s;  ///< 0 to 1e6
};

/// Poses are from here on those of another tool. The arm stands still.
struct ToolStep {
  Transform tool;  ///< the tool frame in the arm's tip frame
};

/// A step of a program.
using ProgramStep = std::variant<JointStep, LineStep, ArcStep, WaitStep, ToolStep>;

/// What an arm does, one step after the other.
struct Program {
  Joints start;                    ///< [rad], where it stands first
  std::vector<ProgramStep> steps;  ///< in the order in which they are done
};

/// Why there is no motion, and which step is at fault.
struct ProgramFailure {
  PlanFailure failure;  ///< `along` is of the step's own way
  size_t step = 0;      ///< from 0
};

/// What became of a corner with a zone.
struct RoundedCorner {
  size_t step;         ///< from 0: the one that ends there
  double begin_s;      ///< when the motion leaves the step's own way
  double end_s;        ///< when it is on the next one's
  double radius_m;     ///< largest distance of the tool centre point from the corner
  double turn_rad;     ///< largest angle of the tool's orientation from the corner's
  double joint_rad;    ///< largest distance of a joint from the corner's; infinity: it has none
  double deviation_m;  ///< largest distance of the tool centre point from the nearer step's way
};

/// A stretch on which a line, an arc or a zone between such is not at its tool speed, other than
/// where the motion starts or stops; and what it is at instead.
struct SlowStretch {
  size_t step;           ///< from 0
  double begin_s;        ///< when it begins
  double end_s;          ///< when it ends
  double slowest_m_s;    ///< the lowest speed of the tool centre point
  double slowest_at_s;   ///< when
  double slowest_along;  ///< where, from 0 to 1 of the step's own way
  Limit limit;           ///< what it runs at there, or nearest before
  int joint = -1;        ///< whose that is, from 0; -1: not a joint's
};

struct ProgramBlock;  // internal

/// The motion of a program. A value, cheap to copy; immutable.
class QAL_API ProgramMotion {
 public:
  /// A whole number of the arm's cycles.
  double duration_s() const;
  /// The joints at a time; before 0 those of the start, after the duration those of the end.
  MotionState At(double time_s) const;
  /// Where the tool is, by the tool of that time.
  Pose PoseAt(double time_s) const;
  /// Both at once.
  Sample SampleAt(double time_s) const;

  /// When each step begins; a corner with a zone belongs to the step before up to its middle.
  const std::vector<double>& step_begins_s() const;
  /// The limits that the motion runs at, the longest first.
  std::vector<Binding> bindings() const;
  /// The corners with a zone, in order; one without room for it is not among them.
  const std::vector<RoundedCorner>& corners() const;
  /// Where it is slower than asked, in order.
  std::vector<SlowStretch> slow_stretches() const;

 private:
  struct Held;
  friend Result<ProgramMotion, ProgramFailure> PlanProgram(
      const Arm& arm, const Program& program, const std::function<void(size_t)>& progress);
  friend const std::vector<ProgramBlock>& BlocksOf(const ProgramMotion& motion);
  explicit ProgramMotion(std::shared_ptr<const Held> held) : held_(std::move(held)) {}
  std::shared_ptr<const Held> held_;
};

/// Plans a program: each step from rest or out of the zone before it to rest or into its own zone.
///
/// Joint moves go straight in joint space. Lines and arcs are followed as by `PlanLine`. A corner
/// with a zone is rounded by adding up what is left of the one way and what is already behind of
/// the other one, each by a polynomial of degree 7: of the tool between lines and arcs, of the
/// joints next to a joint move. Curvature and joints' first three derivatives are continuous. A
/// corner in which there is no room for that, 0.1 mm at least, is a stop.
///
/// From stop to stop the fastest motion is planned that keeps every limit, as along a line: of the
/// joints everywhere; of the tool and its turn, which are limits of the lengths of the vectors (of
/// speed, acceleration and jerk of the tool centre point, so that a narrow arc is passed slowly),
/// on lines, arcs and the zones between such. Each half of a zone has the limits of its own step.
///
/// @param arm      whose limits are kept
/// @param program  where the arm stands first, and the steps
/// @param progress is told, again and again, how many of the steps are planned
/// @return the motion; kNotFinite, kNotAnOrientation, kSetting, kNoArc for what is wrong with a
/// step; and those
///         of `PlanLine` and `PlanJoint`. `failure.before` is where the motion still gets
QAL_API Result<ProgramMotion, ProgramFailure> PlanProgram(
    const Arm& arm, const Program& program,
    const std::function<void(size_t planned_steps)>& progress = {});

}  // namespace qal

#endif  // QAL_PLAN_PROGRAM_H_
