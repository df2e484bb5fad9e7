#ifndef QAL_SOLVE_BRANCH_H_
#define QAL_SOLVE_BRANCH_H_

/// @file
/// Names of a pose's solutions: shoulder, elbow, wrist.

#include <optional>
#include <string>

#include "../model/arm.h"

namespace qal {

/// Which of a pose's solutions joints belong to. Each changes at its singularity alone.
struct Branch {
  /// The wrist's centre is on the side of axis 1 that axis 2 is offset to; without an offset, on
  /// the side where it is with all joints at zero; where that is on axis 1, on the side of the
  /// base's x axis with joint 1 at zero.
  bool shoulder_front;
  /// Of an arm that reaches out, the elbow is on the far side, from the base, of the line from axis
  /// 2 to the wrist: above it, where the base stands on the floor.
  bool elbow_up;
  /// Axis 6 is turned from axis 4 clockwise, as axis 5 is seen pointing at the viewer: joint 5 is
  /// on the other side of where axes 4 and 6 are parallel.
  bool wrist_flip;

  /// Whether they are the same one.
  friend bool operator==(const Branch& a, const Branch& b) {
    return a.shoulder_front == b.shoulder_front && a.elbow_up == b.elbow_up &&
           a.wrist_flip == b.wrist_flip;
  }
  /// Whether they are different ones.
  friend bool operator!=(const Branch& a, const Branch& b) { return !(a == b); }
};

/// The branch of joints. Arms with a spherical wrist or three parallel axes, or near them
/// (`Family`), have them, as they have the measures of `Singularities`.
/// @return nothing for another arm, or where the joints have no pose
QAL_API std::optional<Branch> BranchOf(const Arm& arm, const Joints& joints);

/// "shoulder front, elbow up, no wrist flip"
QAL_API std::string BranchName(const Branch& branch);

}  // namespace qal

#endif  // QAL_SOLVE_BRANCH_H_
