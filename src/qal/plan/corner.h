#ifndef QAL_PLAN_CORNER_H_
#define QAL_PLAN_CORNER_H_

#include <optional>

#include "path_follower.h"
#include "program.h"
#include "way.h"
#include "zone_path.h"

// Internal: corners between two ways, and the zones that round them.
namespace qal {

/// One of the two ways of a corner.
struct CornerSide {
  const ToolPath* tool = nullptr;     ///< none: by the joints
  const JointPath* joints = nullptr;  ///< to the corner or from it; none: not known, not needed
  double span = 0;
  bool is_first = false;  ///< it ends at the corner; otherwise it begins there
};

/// Two ways that meet.
struct Corner {
  const Screws& screws;
  CornerSide first;
  CornerSide second;

  /// Whether the zone is one of the joints: where a way has no path of the tool.
  bool of_joints() const { return first.tool == nullptr || second.tool == nullptr; }
};

/// Distances from a corner, as a zone has them.
struct ZoneDistances {
  double tool_m = 0;
  double turn_rad = 0;
  double joint_rad = 0;
};

/// A rounded corner: the spans of its zone, and how far it gets from the corner and from the ways.
struct Rounding {
  ZoneSpans spans;
  ZoneDistances farthest;
  double deviation_m;
};

/// The largest zone that stays within the limits that are asked for, and on the nearer halves of
/// both ways.
/// @return nothing where there is no room: there the motion has to stop
std::optional<Rounding> RoundingOf(const Corner& corner, const Zone& zone);

/// The joints in a zone of joints.
class JointZoneSolver final : public PlaceSolver {
 public:
  /// @param begin the place at which the zone begins
  JointZoneSolver(const ZoneSpans& spans, const JointPath& first, const JointPath& second,
                  double begin)
      : ways_(spans), first_(first), second_(second), begin_(begin) {}
  std::optional<PathPoint> Solve(double s, const Joints& guess) const override;
  double Deviation(double s, const Joints& joints) const override;

 private:
  ZoneWays ways_;
  const JointPath& first_;
  const JointPath& second_;
  double begin_;
};

}  // namespace qal

#endif  // QAL_PLAN_CORNER_H_
