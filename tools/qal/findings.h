#ifndef QAL_TOOLS_QAL_FINDINGS_H_
#define QAL_TOOLS_QAL_FINDINGS_H_

#include <string>
#include <vector>

#include "../../io/judgement.h"
#include "../../io/loaded_arm.h"
#include "../../io/trajectory.h"
#include "tables.h"

namespace qal::tools {

/// What a verification of a trajectory file found.
struct Findings {
  io::LoadedArm loaded;
  io::LocatedTrajectory trajectory;
  io::Limits limits;
  io::Metrics metrics;
  std::vector<io::Violation> violations;
  std::vector<io::Violation> notes;  ///< the same of limits that are but assumed
};

/// Measures a trajectory and holds it against limits.
/// @param strict whether an assumed limit is like any other
Findings FindingsOf(const io::LoadedArm& loaded, io::LocatedTrajectory trajectory,
                    const io::Limits& limits, bool strict);

/// @param name what the file is called
std::string FindingsText(const Findings& findings, const std::string& name);
Json FindingsJson(const Findings& findings, const std::string& name);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_FINDINGS_H_
