#ifndef QAL_TOOLS_ARM_READ_ARM_H_
#define QAL_TOOLS_ARM_READ_ARM_H_

#include <string>

#include "arm.h"

namespace qal::tools {

struct ReadOptions {
  std::string base;           ///< base link of a URDF; empty: the link that has no parent
  std::string tip;            ///< tip link of a URDF; empty: where the chain of six joints ends
  bool millimetres = false;   ///< lengths are written in mm
  bool degrees = false;       ///< angles of a table are written in degrees
  bool exact_angles = false;  ///< read an angle such as 1.5708 as the multiple of 15 degrees it is
};

/// Reads an arm from a URDF (.urdf, .xml) or from a table of parameters (.toml, .json). What the
/// files contain is in docs/your-arm.md.
/// @throw UsageError "FILE: ..." or "FILE, line N: ..." when the file can't be read or does not
///        describe six revolute joints in a chain
Arm ReadArm(const std::string& path, const ReadOptions& options);

}  // namespace qal::tools

#endif  // QAL_TOOLS_ARM_READ_ARM_H_
