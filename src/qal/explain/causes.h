#ifndef QAL_EXPLAIN_CAUSES_H_
#define QAL_EXPLAIN_CAUSES_H_

#include <functional>
#include <optional>
#include <vector>

#include "../model/frames.h"
#include "../solve/kinematics.h"
#include "explanation.h"
#include "smallest_vector.h"

// Internal: what the failures have in common.
namespace qal {

/// The cause that a failure's reason stands for by itself.
Cause CauseOf(Reason reason);

/// What no joint may go beyond in one step from the joints before [rad].
using StepBounds = Joints;

/// The way that a joint at its arm's velocity, scaled, makes in a time.
StepBounds StepBoundsOf(const Arm& arm, double velocity_scale, double time_s);

/// The joint that is beyond its bound by most.
std::optional<Error> TooFar(const Joints& joints, const Joints& before, const StepBounds& bounds);

/// The solutions of a pose, the nearest first; those that are in range but too far from `before`
/// are refused for that. Empty where the pose has none.
std::vector<ExplainedSolution> SolutionsOf(const Arm& arm, const Pose& pose, const Joints& before,
                                           const StepBounds& bounds);

/// The shortest shift after which a pose has a solution within the joints' range.
std::optional<Vec3> WayBack(const Arm& arm, const Pose& pose, const Joints& near);

/// How to look for a shift of a pose [m, base frame], towards the arm first.
VectorSearch ShiftSearch(const Arm& arm, const Pose& pose, double shortest_m = 1e-4);

/// How to look for a turn, as a rotation vector [rad].
VectorSearch TurnSearch();

/// The pose of a turned tool: by a rotation vector [rad, base frame].
Pose TurnedBy(const Pose& pose, const Vector3& rotation);
Pose ShiftedBy(const Pose& pose, const Vector3& shift);

/// The arm with its tool centre point moved [m, tool frame].
Result<Arm> WithToolMoved(const Arm& arm, const Vector3& by);

/// The move of the tool centre point that is the same to the arm as a shift of its pose.
Vector3 ToolMoveOf(const Vector3& shift, const Pose& pose);

/// The largest part of a speed, less than all of it, with which something works.
std::optional<double> SmallestSlowdown(const std::function<bool(double part)>& works);

/// Puts the smallest first.
void Sort(std::vector<Change>& changes);

/// What a difference of joints counts as a change.
double SizeOf(const Joints& a, const Joints& b);

/// The other solutions of a pose within the joints' range, each also with a joint a turn on or
/// back; those first whose joint farthest from `near` is nearest.
std::vector<Joints> OtherSolutions(const Arm& arm, const Pose& pose, const Joints& near);

}  // namespace qal

#endif  // QAL_EXPLAIN_CAUSES_H_
