#ifndef QAL_PLAN_WAY_H_
#define QAL_PLAN_WAY_H_

#include <memory>
#include <optional>

#include "limited_path.h"
#include "program.h"
#include "screws.h"

// Internal: a program's steps as ways to go.
namespace qal {

/// Where a way begins. The joints may not be known yet: after a zone they needn't stand anywhere
/// for the next line to begin.
struct WayStart {
  Pose pose;
  Joints joints;
};

/// A step that moves, from where it begins to its end, without the zones.
struct Way {
  size_t step = 0;
  std::shared_ptr<const ToolPath> tool = nullptr;  ///< none: the joints go straight
  bool straight = false;                           ///< the tool does, or else the joints
  double length_m = 0;                             ///< of the tool's way, not of joint moves
  double angle_rad = 0;                            ///< by which the tool turns, likewise
  Joints from = {};                                ///< of joint moves, as is the next
  Joints to = {};
  double span = 0;  ///< about metres of the tool, so that speeds along all ways are alike
  LimitScale scale = {};
  ToolLimits tool_limits = {};
  double max_orientation_error_rad = 0;
  std::optional<Zone> zone = {};

  bool moves() const { return span > 0; }
  /// What there is of limits but those that hold from place to place: not where it begins.
  PathSection SectionOf(const Arm& arm) const;
};

/// Whether a step is a motion; the others stand still.
bool IsMotion(const ProgramStep& step);

/// Whether the joints at its begin have to be known to make a step's way.
bool NeedsJoints(const ProgramStep& step);

/// The way of a step that is a motion. A way of no length has no span.
/// @return kNotFinite, kNotAnOrientation, kSetting, kNoArc, kJointRange; the errors of `Nearest`
///         for a joint move to a pose
Result<Way> WayOf(const Arm& arm, const ProgramStep& step, const WayStart& start);

}  // namespace qal

#endif  // QAL_PLAN_WAY_H_
