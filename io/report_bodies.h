#ifndef QAL_IO_REPORT_BODIES_H_
#define QAL_IO_REPORT_BODIES_H_

#include <qal/model/chain.h>

#include <array>
#include <string>
#include <vector>

#include "json.h"
#include "loaded_arm.h"

namespace qal::io {

/// The bodies of an arm for the report's page, and why others are missing.
struct ReportBodies {
  Json bodies = Json::array();
  std::vector<std::string> notes = {};
};

/// What the arm's URDF says about its looks: shapes, and meshes in STL files that are found on
/// disk. package:// and relative paths are looked for in the URDF's folder and those above. None of
/// an arm without a URDF. Whatever is wrong with them is a note.
/// @param axes of the arm with all joints at zero: those of the URDF, or its looks are not drawn
/// @param whose axes these are, for a note
ReportBodies ReportBodiesOf(const LoadedArm& loaded, const std::array<AxisLine, 6>& axes,
                            const char* whose = "the solver");

}  // namespace qal::io

#endif  // QAL_IO_REPORT_BODIES_H_
