#ifndef QAL_IO_FINDINGS_H_
#define QAL_IO_FINDINGS_H_

#include <vector>

#include "judgement.h"
#include "loaded_arm.h"
#include "trajectory.h"

namespace qal::io {

/// What a verification of a trajectory found.
struct Findings {
  LoadedArm loaded;
  LocatedTrajectory trajectory;
  Limits limits;
  Metrics metrics;
  std::vector<Violation> violations;
  std::vector<Violation> notes;  ///< the same of limits that are but assumed
};

/// Measures a trajectory and holds it against limits.
/// @param strict whether an assumed limit is like any other
Findings FindingsOf(const LoadedArm& loaded, LocatedTrajectory trajectory, const Limits& limits,
                    bool strict);

/// The joint, counted from 1, that a value is about; 0: none.
size_t JointOf(const Findings& findings, size_t metric, size_t entry);

}  // namespace qal::io

#endif  // QAL_IO_FINDINGS_H_
