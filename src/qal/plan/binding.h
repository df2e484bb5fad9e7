#ifndef QAL_PLAN_BINDING_H_
#define QAL_PLAN_BINDING_H_

/// @file
/// Which limits a motion runs at.

namespace qal {

/// What a motion may run into.
enum class Limit {
  kToolSpeed,          ///< of the tool centre point
  kToolAcceleration,   ///< of the tool centre point
  kToolJerk,           ///< of the tool centre point
  kTurnSpeed,          ///< of the tool's orientation
  kTurnAcceleration,   ///< of the tool's orientation
  kTurnJerk,           ///< of the tool's orientation
  kJointVelocity,      ///< of one joint
  kJointAcceleration,  ///< of one joint
  kJointJerk           ///< of one joint
};

/// A limit that a motion runs at, and for how long.
struct Binding {
  Limit limit;         ///< which one
  int joint = -1;      ///< from 0; -1: the limit is not a joint's
  double share = 0;    ///< of the duration, from 0 to 1
  double begin_s = 0;  ///< its longest stretch, from here
  double end_s = 0;    ///< to here
};

}  // namespace qal

#endif  // QAL_PLAN_BINDING_H_
