#ifndef QAL_PLAN_SLOW_STRETCHES_H_
#define QAL_PLAN_SLOW_STRETCHES_H_

#include <vector>

#include "program_planner.h"

// Internal: where a program's motion is not at its tool speed.
namespace qal {

/// The blocks of a motion, for what is made of it besides.
const std::vector<ProgramBlock>& BlocksOf(const ProgramMotion& motion);

/// Looked for once a cycle.
std::vector<SlowStretch> SlowStretchesOf(const std::vector<ProgramBlock>& blocks, double cycle_s);

}  // namespace qal

#endif  // QAL_PLAN_SLOW_STRETCHES_H_
