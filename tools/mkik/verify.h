#ifndef QAL_TOOLS_MKIK_VERIFY_H_
#define QAL_TOOLS_MKIK_VERIFY_H_

#include "../../src/qal/model/closed_form_model.h"

namespace qal::tools {

/// How far a model was from its arm at the most, in metres or as a matrix element.
struct Verification {
  int joint_sets;    ///< random ones, within +-170 degrees
  double forward;    ///< the model's forward kinematics from the described transforms
  double solutions;  ///< the solutions' tip frames from the target's
};

/// Checks a model against the arm that it was made of, both ways.
/// @throw Failure when a difference exceeds 1e-9, a pose stays unsolved, or the joints that it came
///        from are not among the solutions
Verification Verify(const ArmDescription& arm, const Model& model);

}  // namespace qal::tools

#endif  // QAL_TOOLS_MKIK_VERIFY_H_
