#ifndef QAL_STUDY_APPROACHES_H_
#define QAL_STUDY_APPROACHES_H_

#include <optional>

#include "../plan/joint_path.h"
#include "../plan/screws.h"
#include "reach.h"

// Internal: the straight lines on which the tool arrives at a pose.
namespace qal {

/// An approach is a line that `PlanLine` follows, without a change of orientation. It is followed
/// from its end to its beginning, where the same joints come by: a solution of the end thus tells
/// its start.
class Approaches {
 public:
  /// @param study with a line
  /// @param middle joints at which the arm's solver has a pose
  /// @return the errors of `Screws::Of`
  static Result<Approaches> Of(const Arm& arm, const ReachStudy& study, const Joints& middle);

  /// Where the approach begins that ends at a pose.
  Pose BeginOf(const Pose& end) const;

  /// The joints along the approach, backwards: its parameter is 0 at the end.
  /// @param joints of the end
  /// @return nothing where they can't be followed to the beginning
  std::optional<JointPath> Follow(const Pose& end, const Joints& joints) const;

 private:
  Approaches(const Screws& screws, const ReachStudy& study);

  Screws screws_;
  double length_m_;
  std::optional<Vector3> direction_;  // of length 1; none: the tool's z axis
};

}  // namespace qal

#endif  // QAL_STUDY_APPROACHES_H_
