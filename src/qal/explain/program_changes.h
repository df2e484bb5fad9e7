#ifndef QAL_EXPLAIN_PROGRAM_CHANGES_H_
#define QAL_EXPLAIN_PROGRAM_CHANGES_H_

#include "explain.h"

// Internal: what makes a program work.
namespace qal {

/// Where an arm is before a step, and with which tool.
struct BeforeStep {
  Arm arm;
  Joints joints;
};

/// @return nothing where the steps before have no motion
std::optional<BeforeStep> Before(const Arm& arm, const Program& program, size_t step);

/// Tries the changes that were found for a step, and those of the program, in the program: what
/// remains are those with which all of it has a motion.
/// @param told in/out: `why.changes`, and the programs that they make
void TryInProgram(const Arm& arm, const Program& program, ProgramExplanation& told);

}  // namespace qal

#endif  // QAL_EXPLAIN_PROGRAM_CHANGES_H_
