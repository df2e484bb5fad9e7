#ifndef QAL_TOOLS_QAL_AGREEMENT_H_
#define QAL_TOOLS_QAL_AGREEMENT_H_

#include "../../src/core/roadpoint.h"
#include "arguments.h"

namespace qal::tools {

/// The waypoint at given joints: pose by forward kinematics, `ik_flag` true.
/// @throw Failure when the solver gives no pose
RoadPoint AtJoints(const Joints& joints);

/// How far the pose of a waypoint's joints is from its own pose.
struct Gap {
  double position_m;
  double angle_rad;

  /// The joints are a solution of the pose. Where a pose has none, the library may answer with the
  /// joints of a pose that its nudge of 1e-5 rad a joint leads to, at most 6e-5 rad and about as
  /// many metres away, which still counts, or with joints held where they were, which doesn't.
  bool Reaches() const { return position_m <= 1e-4 && angle_rad <= 1e-4; }
};

/// The angle of the turn from one orientation to the other, 0 to pi [rad]. The quaternions need not
/// have length 1.
double AngleBetween(const Ori& a, const Ori& b);

/// @throw Failure when the solver gives no pose
Gap GapAt(const RoadPoint& point);

/// Of `q` and -q, which are the same rotation, the one nearer `reference`. The library compares
/// orientations by component.
Ori SignedAs(const Ori& q, const Ori& reference);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_AGREEMENT_H_
