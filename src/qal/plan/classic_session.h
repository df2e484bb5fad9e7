#ifndef QAL_PLAN_CLASSIC_SESSION_H_
#define QAL_PLAN_CLASSIC_SESSION_H_

#include <optional>
#include <string>

#include "../../kinematics/solve/context.h"
#include "classic.h"

namespace qal::classic {

/// What the classic operations have to know of an arm. One with the reference arm's motors and
/// cycle has its numbers, digit by digit.
ArmNumbers NumbersOf(const Arm& arm);

RoadPoint ToRoadPoint(const Pose& pose, const Joints& joints);
State ToState(const RoadPoint& point);

/// A classic operation on an arm: its context, and what it tells, kept and passed on.
class Session final : private Observer {
 public:
  Session(const Arm& arm, const Listener& listener)
      : arm_(arm),
        listener_(listener),
        numbers_(NumbersOf(arm)),
        context_{arm.functions(), numbers_, *this} {}

  const Arm& arm() const { return arm_; }
  const Context& context() const { return context_; }

  /// The last event that ends an operation or holds a point, with a copy of the point.
  struct Heard {
    Event event;
    RoadPoint point;
    int index, joint;
    double value, bound;
  };
  /// The first of these events, in the order in which they came; nothing: none came.
  const std::optional<Heard>& failure() const { return failure_; }

  /// Why a point has no solution from its own joints: which joint of the nearest solution leaves
  /// the classic range or the bound.
  Error WhyUnsolved(const RoadPoint& point, double step_bound_rad) const;

  /// The joints of a line's end, nearest `near`: exactly, where the operations would nudge, and
  /// within the classic range, whatever the arm's limits.
  Result<State> SolveEnd(const Pose& end, const Joints& near) const;

  /// Whether the joints have the pose. Where a pose has no solution, the operations may answer with
  /// joints that a nudge of 1e-5 rad a joint leads to, at most 6e-5 rad and about as many metres
  /// away, which counts, or hold joints, which doesn't.
  bool Reaches(const RoadPoint& point) const;

 private:
  void Hear(const Report& report) const override;

  const Arm& arm_;
  const Listener& listener_;
  ArmNumbers numbers_;
  Context context_;
  mutable std::optional<Heard> failure_;  // hearing is const, since the console keeps nothing
};

}  // namespace qal::classic

#endif  // QAL_PLAN_CLASSIC_SESSION_H_
