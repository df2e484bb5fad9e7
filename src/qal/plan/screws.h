#ifndef QAL_PLAN_SCREWS_H_
#define QAL_PLAN_SCREWS_H_

#include <array>

#include "../model/arm.h"
#include "../model/frames.h"
#include "../model/lines.h"

// Internal: an arm as the screws of its joints.
namespace qal {

/// A rigid motion's velocity: that of the point at the base's origin [m], and the angular one
/// [rad], per unit of whatever it changes with.
struct Twist {
  Vector3 linear;
  Vector3 angular;
};

inline Twist operator+(const Twist& a, const Twist& b) {
  return {a.linear + b.linear, a.angular + b.angular};
}

inline Twist operator*(double factor, const Twist& t) {
  return {factor * t.linear, factor * t.angular};
}

/// How `b` changes when it is carried along by `a`.
inline Twist Bracket(const Twist& a, const Twist& b) {
  return {Cross(a.angular, b.linear) + Cross(a.linear, b.angular), Cross(a.angular, b.angular)};
}

/// Where six joints put the tool, and the axes as twists.
struct PlacedArm {
  Frame tool;
  std::array<Twist, 6> axes;
};

/// An arm's joint axes: the tool's frame is the product of six rotations about fixed axes and its
/// frame at zero (R. W. Brockett, "Robotic manipulators and the product of exponentials formula",
/// 1984). What a solver's forward kinematics say, at a price that doesn't depend on the solver, and
/// with the axes.
class Screws {
 public:
  /// From the poses about the joints at zero.
  /// @param joints where the forward kinematics has to agree with the axes
  /// @return the errors of `Forward`; kSolverFault where it doesn't agree
  static Result<Screws> Of(const Arm& arm, const Joints& joints);

  PlacedArm At(const Joints& joints) const;

 private:
  std::array<Line, 6> axes_ = {};  // with all joints at zero, in the base frame
  Frame tool_ = {};                // likewise
};

}  // namespace qal

#endif  // QAL_PLAN_SCREWS_H_
