#ifndef QAL_TOOLS_MKIK_VERIFY_H_
#define QAL_TOOLS_MKIK_VERIFY_H_

#include "../../src/qal/model/closed_form_model.h"

namespace qal::tools {

/// What a model answers for the pose of some joints. Errors in metres or as a matrix element.
struct PoseCheck {
  int solutions = 0;
  bool found = false;  ///< the joints are among them, the short way round
  int wrong = 0;       ///< solutions that are off the pose by more than 1e-10
  double forward = 0;  ///< the model's forward kinematics from the pose
  double worst = 0;    ///< the solutions' poses from it
  double solve_s = 0;  ///< time to solve it
};

/// @param fitted judged by the arm as it is described; the nearest member in its place, by itself
PoseCheck CheckPose(const ArmDescription& arm, const FittedModel& fitted, const Joints& joints);

/// How far a model was from its arm at the most, in metres or as a matrix element.
struct Verification {
  int joint_sets;            ///< random ones, within +-170 degrees
  double forward;            ///< the model's forward kinematics from the described transforms
  double solutions;          ///< the solutions' tip frames from the target's
  int missed;                ///< joint sets that were not among the solutions of their pose
  TipDifference difference;  ///< of the family's nearest member from the described arm
  double solve_s;            ///< time for a pose, on this machine
};

/// Checks a model, both ways, against the arm that it was made of; the nearest member in its place
/// against itself.
/// @throw Failure when a difference exceeds 1e-9, or the joints that a pose came from are not among
///        its solutions: more than 10 times of a polished or general arm, else once
Verification Verify(const ArmDescription& arm, const FittedModel& fitted);

}  // namespace qal::tools

#endif  // QAL_TOOLS_MKIK_VERIFY_H_
