#ifndef QAL_STUDY_APPROACHES_H_
#define QAL_STUDY_APPROACHES_H_

#include <optional>
#include <vector>

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
  /// @param near  reference joints of its solutions
  /// @return the errors of `Screws::Of`
  static Result<Approaches> Of(const Arm& arm, const ReachStudy& study, const Joints& near);

  /// Whether the approach to a pose begins within reach: the quickest way to tell that it can't be
  /// followed.
  bool Begins(const Pose& end) const { return Inverse(arm_, BeginOf(end), near_).has_value(); }

  /// How far the joints stay from their limits on all of an approach [rad].
  /// @param joints of the end
  /// @return nothing where they can't be followed to the beginning within them
  std::optional<double> MarginOf(const Pose& end, const Joints& joints) const;

  /// The joints at `kReachLineParts` + 1 places of an approach that can be followed.
  std::vector<Joints> PlacesOf(const Pose& end, const Joints& joints) const;

 private:
  Approaches(const Arm& arm, const Screws& screws, const ReachStudy& study, const Joints& near);
  Pose BeginOf(const Pose& end) const;
  // Backwards: the path's parameter is 0 at the end.
  std::optional<JointPath> Follow(const Pose& end, const Joints& joints) const;

  Arm arm_;
  Screws screws_;
  double length_m_;
  std::optional<Vector3> direction_;  // of length 1; none: the tool's z axis
  Joints near_;
};

}  // namespace qal

#endif  // QAL_STUDY_APPROACHES_H_
