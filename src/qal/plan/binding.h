#ifndef QAL_PLAN_BINDING_H_
#define QAL_PLAN_BINDING_H_

namespace qal {

/// What a motion may run into.
enum class Limit {
  kToolSpeed,
  kToolAcceleration,
  kToolJerk,
  kTurnSpeed,
  kTurnAcceleration,
  kTurnJerk,
  kJointVelocity,
  kJointAcceleration,
  kJointJerk
};

/// A limit that a motion runs at, and for how long.
struct Binding {
  Limit limit;
  int joint = -1;      ///< from 0; -1: the limit is not a joint's
  double share = 0;    ///< of the duration, from 0 to 1
  double begin_s = 0;  ///< its longest stretch, from here
  double end_s = 0;    ///< to here
};

}  // namespace qal

#endif  // QAL_PLAN_BINDING_H_
