#ifndef QAL_TOOLS_QAL_PLAN_SUMMARY_H_
#define QAL_TOOLS_QAL_PLAN_SUMMARY_H_

#include <qal/plan/program.h>

#include <string>

#include "../../io/program_file.h"
#include "tables.h"
#include "units.h"

namespace qal::tools {

/// A program, and what became of it.
struct PlannedProgram {
  io::ProgramFile file;
  ProgramMotion motion;
};

/// How many corners are farther from their steps' ends than the zones allow, by more than rounding.
size_t CornersOutsideOfZones(const PlannedProgram& planned);

/// Rows of the corners that are passed without a stop, and of the first stretches below the tool
/// speed.
std::string ProgramRows(const PlannedProgram& planned, const Units& units);
/// Each step, corner and slow stretch.
Json ProgramJson(const PlannedProgram& planned);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_PLAN_SUMMARY_H_
